// SPDX-License-Identifier: MIT
#include "simulator/faults.h"

#include <algorithm>
#include <iterator>

namespace sim
{
namespace
{

/// What a bare word of a line is.
enum class Bare { Target, Text, Texts };

struct KindRow {
    FaultKind kind;
    const char* word;
    qint64 amount; // default; -1: the kind has none
    Bare bare = Bare::Target;
};

constexpr KindRow kindRows[] = {
    {FaultKind::Slow, "slow", 1000},
    {FaultKind::Silent, "silent", -1},
    {FaultKind::Refuse, "refuse", -1},
    {FaultKind::HangUp, "hang-up", 50},
    {FaultKind::Stall, "stall", 50},
    {FaultKind::Garbage, "garbage", -1},
    {FaultKind::NotAnObject, "not-an-object", -1},
    {FaultKind::EmptyReply, "empty", -1},
    {FaultKind::HttpError, "http-error", 500},
    {FaultKind::HugeReply, "huge", 10 * 1000 * 1000},
    {FaultKind::HugeHead, "huge-head", 5000},
    {FaultKind::Endless, "endless", 0},
    {FaultKind::Packed, "packed", 100 * 1000 * 1000},
    {FaultKind::Chatter, "chatter", 1000},
    {FaultKind::Misnamed, "misnamed", -1},
    {FaultKind::ValueAsNumber, "number", -1},
    {FaultKind::ValueAsArray, "array", -1},
    {FaultKind::ValueMissing, "no-value", -1},
    {FaultKind::Unknown, "unknown", -1},
    {FaultKind::Text, "text", -1},
    {FaultKind::Fail, "fail", -1},
    {FaultKind::Mistake, "mistake", -1},
    {FaultKind::LateAnswer, "late", 5000},
    {FaultKind::NoAnswer, "unanswered", -1},
    {FaultKind::WrongMd5, "wrong-md5", -1},
    {FaultKind::CutUpload, "cut-upload", 60},
    {FaultKind::Throttle, "throttle", 100 * 1000},
    {FaultKind::NoRanges, "no-ranges", -1},
    {FaultKind::OtaSlow, "ota-slow", 30 * 1000},
    {FaultKind::OtaStaysAway, "ota-stays-away", -1},
    {FaultKind::OtaOldVersion, "ota-old-version", -1},
    {FaultKind::OtaFallsBack, "ota-falls-back", -1, Bare::Text},
    {FaultKind::OtaLosesSettings, "ota-loses-settings", -1},
    {FaultKind::OtaResets, "ota-resets", -1, Bare::Texts},
    {FaultKind::OtaMoves, "ota-moves", -1, Bare::Text},
    {FaultKind::HugeMessage, "huge-message", 20 * 1000 * 1000},
    {FaultKind::EndlessHandshake, "endless-handshake", -1},
    {FaultKind::RefusedHandshake, "refused-handshake", -1},
    {FaultKind::Flood, "flood", 2000},
    {FaultKind::NoPing, "no-ping", -1},
};

const KindRow& rowOf(FaultKind kind)
{
    return *std::find_if(std::begin(kindRows), std::end(kindRows),
                         [kind](const KindRow& row) { return row.kind == kind; });
}

bool targetFits(const QString& target, const QStringList& tags)
{
    const QStringList wanted = target.split(QLatin1Char('+'), Qt::SkipEmptyParts);
    return std::all_of(wanted.begin(), wanted.end(),
                       [&tags](const QString& tag) { return tags.contains(tag); });
}

std::optional<Fault> refuseLine(QString* error, const QString& why)
{
    if (error != nullptr)
        *error = why;
    return std::nullopt;
}

} // namespace

qint64 Fault::amountOrDefault() const
{
    return amount >= 0 ? amount : rowOf(kind).amount;
}

QString faultWord(FaultKind kind)
{
    return QString::fromLatin1(rowOf(kind).word);
}

QStringList faultWords()
{
    QStringList words;
    for (const KindRow& row : kindRows)
        words << QString::fromLatin1(row.word);
    return words;
}

std::optional<Fault> parseFault(const QString& line, QString* error)
{
    QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return refuseLine(error, QStringLiteral("no fault named"));
    const QString kindWord = words.takeFirst();
    const auto row = std::find_if(std::begin(kindRows), std::end(kindRows), [&](const KindRow& r) {
        return kindWord == QLatin1String(r.word);
    });
    if (row == std::end(kindRows))
        return refuseLine(error, QStringLiteral("unknown fault \"%1\"").arg(kindWord));
    Fault fault;
    fault.kind = row->kind;
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        bool isNumber = false;
        const qint64 number = word.toLongLong(&isNumber);
        if (isNumber && number >= 0) {
            fault.amount = number;
        } else if (word == QLatin1String("as")) {
            fault.text = words.join(QLatin1Char(' '));
            words.clear();
        } else if (word == QLatin1String("on") && !words.isEmpty()) {
            fault.target = words.takeFirst();
        } else if (word == QLatin1String("times") && !words.isEmpty()) {
            fault.strikes = words.takeFirst().toInt(&isNumber);
            if (!isNumber || fault.strikes < 1)
                return refuseLine(error, QStringLiteral("\"times\" needs a number from 1 up"));
        } else if (row->bare == Bare::Texts || (row->bare == Bare::Text && fault.text.isEmpty())) {
            fault.text += (fault.text.isEmpty() ? QString() : QStringLiteral(" ")) + word;
        } else if (row->bare == Bare::Target && fault.target.isEmpty()) {
            fault.target = word;
        } else {
            return refuseLine(error, QStringLiteral("\"%1\" is one word too many").arg(word));
        }
    }
    if (row->bare != Bare::Target && fault.text.isEmpty())
        return refuseLine(error, QStringLiteral("\"%1\" needs a word").arg(kindWord));
    return fault;
}

QString faultLine(const Fault& fault)
{
    QString line = faultWord(fault.kind);
    if (fault.amount >= 0)
        line += QStringLiteral(" %1").arg(fault.amount);
    if (!fault.target.isEmpty())
        line += QStringLiteral(" on ") + fault.target;
    if (fault.strikes > 0)
        line += QStringLiteral(" times %1").arg(fault.strikes);
    if (!fault.text.isEmpty())
        line += QStringLiteral(" as ") + fault.text;
    return line;
}

QString hostileText()
{
    static const QString text =
        QStringLiteral(
            "<b>bold</b><img src=x><script>alert(1)</script> \"q\" 'a' %1%2%n & = ; "
            "..\\..\\../../etc $(id) `id` \r\nline two\t\u0007\u001b[31m \u202Eltr\u202C "
            "\u540D\u524D \U0001F4F9 ") +
        QString(600, QLatin1Char('x'));
    return text;
}

void FaultList::add(const Fault& fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.append(fault);
}

void FaultList::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.clear();
}

void FaultList::clear(FaultKind kind)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.erase(std::remove_if(m_faults.begin(), m_faults.end(),
                                  [kind](const Fault& fault) { return fault.kind == kind; }),
                   m_faults.end());
}

QVector<Fault> FaultList::all() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QVector<Fault> copy = m_faults;
    copy.detach(); // nobody looks into the list itself outside of the lock
    return copy;
}

bool FaultList::has(FaultKind kind) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::any_of(m_faults.begin(), m_faults.end(), [kind](const Fault& fault) {
        return fault.kind == kind && fault.target.isEmpty();
    });
}

std::optional<Fault> FaultList::strike(FaultKind kind, const QStringList& tags)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto it = m_faults.begin(); it != m_faults.end(); ++it) {
        if (it->kind != kind || !targetFits(it->target, tags))
            continue;
        const Fault struck = *it;
        if (it->strikes > 0 && --it->strikes == 0)
            m_faults.erase(it);
        return struck;
    }
    return std::nullopt;
}

} // namespace sim
