// SPDX-License-Identifier: MIT
#pragma once

#include <QTest>

/// The columns of a test's table: columns<QString, bool>("text", "valid").
template <class... Types, class... Names> void columns(Names... names)
{
    (QTest::addColumn<Types>(names), ...);
}

/// One row of it on one line: row("empty", "", false). Plain text is a QString.
template <class... Cells> void row(const char* name, const Cells&... cells)
{
    (void)(QTest::newRow(name) << ... << cells);
}
