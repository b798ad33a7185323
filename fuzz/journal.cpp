// SPDX-License-Identifier: MIT
// Journals of batches, which lie in a folder that others may write to, and the reports made of
// them.
#include "common/box_protocol.h"
#include "common/json_map.h"
#include "fuzz/fuzz.h"
#include "upgrade/interrupted_batch.h"

#include <QJsonDocument>

#include <climits>

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

/// What is read again after it was written is the same.
void requireKept(const UpgradeSession& session)
{
    const QByteArray written = QJsonDocument(session.toJson()).toJson();
    UpgradeSession again;
    REQUIRE(UpgradeSession::fromJson(QJsonDocument::fromJson(written).object(), &again));
    REQUIRE(QJsonDocument(again.toJson()).toJson() == written);
    REQUIRE(again.baseName() == session.baseName());
}

void requireTaken(const UpgradeSession& session)
{
    REQUIRE(session.started.isValid() && !session.rows.isEmpty());
    requireFileName(session.baseName() + QStringLiteral(".json"));
    for (const UpgradeRow& row : session.rows) {
        REQUIRE(row.mac.isEmpty() || BoxProtocol::isMacAddress(row.mac));
        REQUIRE(row.durationMs >= 0);
        REQUIRE(!row.isProved() || !row.mac.isEmpty());
    }
}

void requireMarked(UpgradeSession session, const QDateTime& now)
{
    const bool hadEnded = session.ended;
    const int underWay = markInterrupted(session, now);
    REQUIRE(session.ended && underWay >= 0 && underWay <= session.rows.size());
    REQUIRE(!hadEnded || underWay == 0);
    for (const UpgradeRow& row : session.rows) {
        REQUIRE(row.address.isEmpty() || BoxProtocol::isIpv4Address(row.address));
        REQUIRE(row.settled || (row.stage != Stage::Preparing && row.stage != Stage::Uploading));
        REQUIRE(row.settings != Settings::Waiting || !row.mac.isEmpty());
    }
    REQUIRE(markInterrupted(session, now) == 0);
    requireKept(session);
}

/// The cells of the record of a CSV text that begins at `at`, which moves behind it.
QStringList takeRecord(const QString& text, int& at)
{
    QStringList cells;
    for (;;) {
        REQUIRE(at < text.size() && text.at(at) == QLatin1Char('"'));
        QString cell;
        for (++at; at < text.size(); ++at) {
            if (text.at(at) == QLatin1Char('"') && text.midRef(++at, 1) != QLatin1String("\""))
                break;
            cell += text.at(at);
        }
        cells << cell;
        if (text.midRef(at, 1) != QLatin1String(","))
            break;
        ++at;
    }
    REQUIRE(text.midRef(at, 2) == QLatin1String("\r\n"));
    at += 2;
    return cells;
}

/// A spreadsheet reads one record of the report as one row, and runs nothing of it.
void requireReport(const UpgradeSession& session, const QDateTime& now)
{
    const QString text = QString::fromUtf8(UpgradeText::csv(session, now).mid(3));
    const int columns = UpgradeText::headers().size();
    int records = 0;
    for (int at = 0; at < text.size(); ++records) {
        const QStringList cells = takeRecord(text, at);
        REQUIRE(cells.size() == columns ||
                (records == 0 && session.interrupted && cells.size() == 1));
        for (const QString& cell : cells) {
            const QString shown = cell.trimmed();
            REQUIRE(shown.isEmpty() ||
                    !QStringLiteral("=+-@\uff1d\uff0b\uff0d\uff20").contains(shown.at(0)));
            for (const QChar c : cell)
                REQUIRE(c.unicode() >= 0x20 && c.unicode() != 0x7f);
        }
    }
    REQUIRE(records == session.rows.size() + (session.interrupted ? 2 : 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QJsonObject json = jsonObject(Input(data, size).rest(), INT_MAX).value_or(QJsonObject());
    UpgradeSession session;
    QString problem;
    const bool isTaken = UpgradeSession::fromJson(json, &session, &problem);
    REQUIRE(isTaken == problem.isEmpty());
    if (!isTaken)
        return 0;
    const QDateTime now(QDate(2026, 3, 4), QTime(5, 6), Qt::UTC);
    requireTaken(session);
    requireKept(session);
    requireReport(session, now);
    requireMarked(session, now);
    return 0;
}
