// SPDX-License-Identifier: MIT
#include "device/item.h"

#include <array>

namespace
{

using AddressNumbers = std::array<int, 4>;

/// The first four runs of decimal digits in `text`; a missing one sorts before every number.
AddressNumbers numbersOf(const QString& text)
{
    constexpr int highest = 99999999;
    AddressNumbers numbers{-1, -1, -1, -1};
    size_t n = 0;
    bool inRun = false;
    for (const QChar c : text) {
        const int digit = c.unicode() - u'0';
        if (digit < 0 || digit > 9) {
            n += inRun ? 1 : 0;
            inRun = false;
            continue;
        }
        if (n == numbers.size())
            break;
        numbers[n] = inRun ? qMin(numbers[n] * 10 + digit, highest) : digit;
        inRun = true;
    }
    return numbers;
}

bool sortsBefore(const Item* a, const Item* b, bool byTitle)
{
    if (byTitle)
        return a->title() < b->title();
    return numbersOf(a->address()) < numbersOf(b->address());
}

} // namespace

QString koraFamily()
{
    return QStringLiteral("KORA");
}

Item::Item(Item* parentItem)
    : m_parentItem(parentItem), m_runner(QStringLiteral("Item"), [this](QProcess* process) {
        CommandRunner::limit(process, CommandRunner::OrderLimitMs);
        connect(process, &QProcess::readyReadStandardOutput, this,
                &Item::R_readyReadStandardOutput);
        connect(process, &QProcess::stateChanged, this, &Item::R_stateChanged);
    })
{
    setDefaults();
}

Item::~Item()
{
    qDeleteAll(m_children);
}

int Item::row() const
{
    return m_parentItem ? m_parentItem->m_children.indexOf(const_cast<Item*>(this)) : 0;
}

int Item::sortedRow(const Item* child, bool byTitle) const
{
    for (int row = m_children.size(); row > 0; --row) {
        if (sortsBefore(m_children.at(row - 1), child, byTitle))
            return row;
    }
    return 0;
}

void Item::appendChild(Item* child, bool byTitle)
{
    insertChild(sortedRow(child, byTitle), child);
}

void Item::insertChild(int row, Item* child)
{
    child->m_parentItem = this;
    child->setLevel(level() + 1);
    m_children.insert(row, child);
}

Item* Item::takeChild(int row)
{
    Item* child = m_children.takeAt(row);
    child->m_parentItem = nullptr;
    return child;
}

QString Item::displayText() const
{
    const QString text = content();
    return text.isEmpty() ? title() : text;
}

QString Item::combinedLabel() const
{
    return title() + QLatin1Char('(') + content() + QLatin1Char(')');
}

bool Item::isKora() const
{
    return m_parentItem && !isGroup() && m_parentItem->title() == koraFamily();
}

bool Item::hasNewerFirmware() const
{
    constexpr int compared = 7;
    const QString package = packageName();
    const QString own = firmwareVersion();
    return !package.isEmpty() && !own.isEmpty() &&
           own.toUpper().right(compared) < package.toUpper().right(compared);
}
