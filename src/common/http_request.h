// SPDX-License-Identifier: MIT
#pragma once

#include <QNetworkRequest>

/// A request for an already encoded address. Any certificate is accepted: boxes and closed networks
/// have none that a computer knows. Not for servers on the internet.
QNetworkRequest httpRequest(const QString& url);
