// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

/// Tables for spreadsheets: UTF-8, commas, every cell quoted.
namespace Csv
{

/// One line with its end. No cell is one that a spreadsheet would run, whoever wrote its text.
QByteArray line(const QStringList& texts);
/// The same as the clipboard takes it to a spreadsheet.
QString clipboardLine(const QStringList& texts);
/// What a file of such lines begins with, for spreadsheets to know its letters.
constexpr char Beginning[] = "\xEF\xBB\xBF";

} // namespace Csv
