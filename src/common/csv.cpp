// SPDX-License-Identifier: MIT
#include "common/csv.h"

namespace
{

/// Text of a box in a spreadsheet: a cell that begins like a formula is run, not shown.
QString harmless(QString text)
{
    for (QChar& c : text) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            c = QLatin1Char(' ');
    }
    const QString trimmed = text.trimmed();
    if (!trimmed.isEmpty() && QStringLiteral("=+-@＝＋－＠").contains(trimmed.at(0)))
        text.prepend(QLatin1Char('\''));
    return text;
}

QString quoted(QString text)
{
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QStringLiteral("\"\"")) +
           QLatin1Char('"');
}

} // namespace

QByteArray Csv::line(const QStringList& texts)
{
    QStringList cells;
    for (const QString& text : texts)
        cells << quoted(harmless(text));
    return cells.join(QLatin1Char(',')).toUtf8() + "\r\n";
}

QString Csv::clipboardLine(const QStringList& texts)
{
    QStringList cells;
    for (const QString& text : texts) {
        const QString cell = harmless(text);
        // Spreadsheets take the quotes around a cell off, and what stood in them for its content.
        cells << (cell.contains(QLatin1Char('"')) ? quoted(cell) : cell);
    }
    return cells.join(QLatin1Char('\t'));
}
