// SPDX-License-Identifier: MIT
#include "media/pacing.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>

/// Arrivals of all kinds on a clock of their own.
class tst_Pacing : public QObject
{
    Q_OBJECT

private slots:
    void pictureIsNeverLate_data()
    {
        // "drift": of the sender's clock, ppm; "jitter": of arrivals, milliseconds; "together":
        // pictures that come in one go.
        columns<int, int, int>("drift", "jitter", "together");
        row("steady", 0, 0, 1);
        row("fast sender", 1000, 0, 1);
        row("slow sender", -1000, 0, 1);
        row("pairs", 0, 0, 2);
        row("jitter", 100, 60, 1);
        row("jitter and stalls", -100, 400, 3);
        row("one burst", 0, 0, 1);
    }
    void pictureIsNeverLate()
    {
        const auto [drift, jitter, together] = cells<int, int, int>();
        constexpr qint64 step = 40000;
        QRandomGenerator random(5);
        struct Arrival {
            qint64 at;
            qint64 stamp;
        };
        QVector<Arrival> arrivals;
        qint64 last = 0;
        for (int n = 0; n < 20000; ++n) {
            const qint64 stamp = n * step;
            const int place = n / together * together + together - 1;
            qint64 at = place * step - place * step / 1000000 * drift;
            at += jitter > 0 ? random.bounded(jitter * 1000) : 0;
            // All of the first three seconds come at once.
            if (QTest::currentDataTag() == QByteArray("one burst"))
                at = qMax(at, 75 * step);
            last = qMax(last, at);
            arrivals.append({last, stamp});
        }
        LivePacing pacing;
        qint64 now = 0;
        QVector<qint64> lags;
        qint64 shortest = step;
        qint64 shown = 0;
        qint64 shownDelay = 0;
        for (const Arrival& each : arrivals) {
            now = qMax(now, each.at);
            const auto newestAt = [&](qint64 time) {
                return (std::upper_bound(arrivals.cbegin(), arrivals.cend(), time,
                                         [](qint64 t, const Arrival& a) { return t < a.at; }) -
                        1)
                    ->stamp;
            };
            const qint64 wait = pacing.waitBefore(each.stamp, newestAt(now), each.at, now);
            const qint64 lag = newestAt(now) - each.stamp;
            QVERIFY(wait == 0 || (wait > 0 && lag + wait <= LivePacing::LateUs));
            now += wait;
            // What came in one go with others is not shown at once with them.
            if (together == 2 && jitter == 0 && each.stamp > 100 * step)
                shortest = qMin(shortest, now - shown);
            shown = now;
            shownDelay = now - each.at;
            lags << newestAt(now) - each.stamp;
        }
        std::sort(lags.begin(), lags.end());
        qInfo() << "lag, median and most:" << lags.at(lags.size() / 2) << lags.last();
        VERIFY_BELOW(lags.at(lags.size() / 2), LivePacing::LateUs + 1);
        // At last none is left of what there was for a moment.
        if (together == 1 && jitter == 0)
            QVERIFY(lags.at(lags.size() * 9 / 10) == 0 && shownDelay < step / 2);
        QVERIFY(shortest >= step / 2);
    }
};

QTEST_GUILESS_MAIN(tst_Pacing)
#include "tst_pacing.moc"
