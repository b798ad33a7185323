// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/http_server.h"

#include <QStringList>

namespace sim
{

/// The dashboard of a box that is managed through its own web page. `models` are the model names
/// as they stand in the page ("ORBIT"); usually one.
QByteArray dashboardPage(const QStringList& models, const QString& address, int number);

/// Answers for the web port: the dashboard, what its links lead to, and the way there from "/".
HttpReply webReply(const HttpRequest& request, const QByteArray& dashboard);

} // namespace sim
