// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/files.h"
#include "tests/support/window_fixture.h"

#include <QTableWidget>

/// The rows of the open report by the first address of the box: header to text.
inline QMap<QString, QMap<QString, QString>> reportRows(const WindowFixture& fixture)
{
    auto* table = fixture.child<QTableWidget>("upgradeReportTable");
    QMap<QString, QMap<QString, QString>> rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QMap<QString, QString> cells;
        for (int column = 0; column < table->columnCount(); ++column)
            cells[table->horizontalHeaderItem(column)->text()] = table->item(row, column)->text();
        rows[cells["设备"].section(' ', 0, 0)] = cells;
    }
    return rows;
}

/// The content of the newest CSV report, without the byte order mark; empty when there is none.
inline QByteArray newestCsv(const WindowFixture& fixture)
{
    const QDir folder(fixture.dataFolder() + "upgrade");
    const QStringList files = folder.entryList({"*.csv"}, QDir::Files, QDir::Name | QDir::Reversed);
    const QByteArray content = readFile(folder.filePath(files.value(0, "none")));
    if (content.isEmpty() || content.startsWith("\xEF\xBB\xBF"))
        return content.mid(3);
    return "no byte order mark";
}
