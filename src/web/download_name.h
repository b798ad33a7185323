// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The name under which a download is offered: the suggested one without \ / : * ? " < > | and
/// without whatever else could lead a file astray. Never empty.
QString offeredName(const QString& suggested);

/// The filter of the save dialog for that name: its suffix and all files, or only all files.
QString saveFilter(const QString& name);
