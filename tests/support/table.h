// SPDX-License-Identifier: MIT
#pragma once

#include <QTest>

#include <tuple>
#include <vector>

/// Of the table that was made last, which is the one of the test that runs.
inline std::vector<const char*>& columnNames()
{
    static std::vector<const char*> names;
    return names;
}

/// The columns of a test's table: columns<QString, bool>("text", "valid").
template <class... Types, class... Names> void columns(Names... names)
{
    columnNames() = {names...};
    (QTest::addColumn<Types>(names), ...);
}

/// One row of it on one line: row("empty", "", false). Plain text is a QString.
template <class... Cells> void row(const char* name, const Cells&... cells)
{
    (void)(QTest::newRow(name) << ... << cells);
}

/// The present row, from its first cell: const auto [text, valid] = cells<QString, bool>().
template <class... Types> std::tuple<Types...> cells()
{
    auto name = columnNames().cbegin();
    // In braces: from left to right.
    return std::tuple<Types...>{
        *static_cast<Types*>(QTest::qData(*name++, qMetaTypeId<Types>()))...};
}
