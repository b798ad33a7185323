// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>

class Item;

/// What a row says of itself to those who do not see it: all that its painting shows.
class RowWords
{
    Q_DECLARE_TR_FUNCTIONS(RowWords)

public:
    /// Which row it is: a group and how many of its boxes are there; a box's address, its name and
    /// whether it is there; an information's caption and value.
    static QString name(const Item& item);
    /// What is marked on the row of a box: its upgrade, and that there is newer firmware.
    static QString description(const Item& item);
};
