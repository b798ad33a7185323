// SPDX-License-Identifier: MIT
#pragma once

#include "common/box_protocol.h"
#include "tests/upgrade/upgrade_checker.h"
#include "tests/upgrade/upgrade_story.h"
#include "upgrade/kept_settings.h"
#include "upgrade/upgrade_fleet.h"
#include "upgrade/upgrade_judgement.h"

/// The engine over modelled boxes, in their time.
class ModelLink final : public BoxLink
{
public:
    explicit ModelLink(sim::ModelLan& lan) : m_lan(lan) {}
    void read(const QString& ip, const QString& parameter, Answered answered) override
    {
        m_lan.read(ip, parameter, std::move(answered));
    }
    void write(const QString& ip, const QString& parameter, const QString& value,
               Answered answered) override
    {
        m_lan.write(ip, parameter, value, std::move(answered));
    }
    void upload(const QString& ip, const QString& file, Answered answered) override
    {
        // One package does not tell its version in its name.
        const QString told = UpgradeJudgement::versionIn(file);
        m_lan.upload(ip, told.isEmpty() ? "1.2.0.660" : told, "digest", std::move(answered));
    }
    void abandonUpload(const QString& ip) override { m_lan.abandonUpload(ip); }
    void order(const QString& ip, BoxOrder order, Answered answered) override
    {
        if (order == BoxOrder::Activate)
            m_lan.activate(ip, std::move(answered));
        else
            m_lan.restart(ip, std::move(answered));
    }

private:
    sim::ModelLan& m_lan;
};

class ModelClock final : public UpgradeClock
{
public:
    explicit ModelClock(const sim::ModelTime& time) : m_time(time) {}
    qint64 ms() const override { return m_time.now(); }
    QDateTime date() const override
    {
        return QDateTime::fromMSecsSinceEpoch(1700000000000 + m_time.now(), Qt::UTC);
    }
    int tickMs() const override { return 1000; }

private:
    const sim::ModelTime& m_time;
};

/// A disk: what was saved a moment ago may be lost with the program, and it may be full.
class ModelStore final : public UpgradeStore
{
public:
    explicit ModelStore(sim::ModelTime& time) : m_time(time) {}
    void save(const UpgradeSession& session, bool open, Saved saved) override
    {
        const bool full = isFull;
        const QString name = session.baseName();
        m_time.in(delay, [this, session, name, open, saved, full, program = program] {
            if (program != this->program)
                return;
            if (!full && open)
                journals[name] = session;
            else if (!full)
                journals.remove(name);
            if (!full)
                reports[name] = session;
            wasFull = wasFull || full;
            saved(!full);
        });
    }

    QMap<QString, UpgradeSession> journals; ///< those to go on with
    QMap<QString, UpgradeSession> reports;  ///< all
    bool isFull = false;
    bool wasFull = false; ///< something could not be saved
    int delay = 5;        ///< of each write, in milliseconds
    int program = 0;      ///< which run of it saves

private:
    sim::ModelTime& m_time;
};

class ModelKept final : public KeptSettings
{
public:
    QVariantMap values(const QString& mac) const override { return m_values.value(mac); }
    void setValues(const QString& mac, const QVariantMap& values) override
    {
        m_values[mac] = values;
    }

protected:
    QStringList waiting() const override { return m_waiting; }
    void setWaiting(const QStringList& list) override { m_waiting = list; }

private:
    QMap<QString, QVariantMap> m_values;
    QStringList m_waiting;
};

/// One history, drawn from a seed: boxes with their habits, batches of them, second tries, and
/// what happens meanwhile, to the boxes and to the program.
class UpgradeWorld
{
public:
    explicit UpgradeWorld(quint32 seed);
    ~UpgradeWorld() { endProgram(); }

    /// Prints what happens.
    void trace();
    /// Runs the history to its end. Empty when nothing went wrong that must not.
    QStringList run();
    int lives() const { return m_lives; }
    /// How the boxes ended: verdict and settings, to how often.
    QMap<QString, int> endings() const;

private:
    sim::ModelBox& boxAt(int n) { return *m_lan.boxes()[size_t(n)]; }
    void addBox(int n);
    void plan(const QVector<UpgradeStory::Event>& events);
    void planTwins();
    void happen(const UpgradeStory::Event& event);
    void swap(const UpgradeStory::Event& event);
    void startProgram();
    void endProgram();
    void beginBatch(bool keep);
    void stepped(const BoxUpgrade& box);
    void swapNow(const BoxUpgrade* upgrade, BoxUpgrade::Step step);
    void second();
    bool isQuiet() const;
    /// What must be on disk before it is done is there when it arrives.
    void checkJournals(const sim::ModelBox& box, const QString& act);
    QStringList check();

    UpgradeStory m_story;
    sim::ModelTime m_time;
    sim::ModelLan m_lan{m_time};
    ModelLink m_link{m_lan};
    ModelClock m_clock{m_time};
    ModelStore m_store{m_time};
    std::unique_ptr<ModelKept> m_kept;
    std::unique_ptr<UpgradeFleet> m_fleet;
    QHash<const BoxUpgrade*, QPair<BoxUpgrade::Step, qint64>> m_steps; ///< and since when
    QMap<QString, QString> m_list; ///< rows of the device list: address to MAC address
    UpgradeChecker m_checker;
    qint64 m_lastEvent = 0;
    int m_lives = 0;
    bool m_isDetailed = false;
    bool m_hasSwapped = false;
};
