// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/virtual_lan.h"
#include "tests/upgrade/upgrade_checker.h"
#include "tests/upgrade/upgrade_story.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <vector>

/// One seeded story over the real program: sixty virtual boxes here, on a clock of theirs, and the
/// window in a process of its own, which can be killed, closed and started again at any moment. In
/// the end only what is on its disk counts, and what has become of the boxes.
class CampaignHistory
{
public:
    static constexpr int Boxes = 60;
    /// Milliseconds of the story in one of the boxes' and the program's.
    static constexpr int Pace = 25;
    static constexpr int TickMs = 1000 / Pace;

    explicit CampaignHistory(quint32 seed);

    /// Empty when nothing went wrong that must not.
    QStringList run();
    int lives() const { return m_lives; }
    QMap<QString, int> endings() const { return m_endings; }
    /// What happened to the boxes and the program, and what the boxes that `problems` name were
    /// told: real time does not come twice the same way.
    QStringList story(const QStringList& problems) const;

private:
    struct Box {
        sim::VirtualBox* box;
        sim::ModelBoxHabits habits;
    };
    struct Report {
        QString name;
        QVector<UpgradeChecker::Told> rows;
        QStringList endings; ///< verdict and settings, for each row
    };

    void addBox(int host);
    void note(const QString& line);
    QString freshAddress();
    void plan(const QVector<UpgradeStory::Event>& events);
    void happen(const UpgradeStory::Event& event);
    void powerCycle(sim::VirtualBox& box, int ms);
    void setDeaf(sim::VirtualBox& box, int ms);
    void setDiskFull(bool full);
    void startProgram();
    void endProgram();
    void command(const char* words);
    bool isQuiet() const;
    bool waitForEnd();
    QVector<Report> reports() const;
    QStringList openStories() const;
    UpgradeChecker::Truth truthOf(const sim::VirtualBox& box) const;

    UpgradeStory m_story;
    QTemporaryDir m_folder;
    sim::VirtualLan m_lan;
    std::vector<Box> m_boxes;
    UpgradeChecker m_checker;
    QProcess m_program;
    QString m_package;
    QElapsedTimer m_clock; ///< since the first batch
    qint64 m_lastEvent = 0;
    int m_nextHost;
    QHash<const sim::VirtualBox*, QMap<QString, QString>> m_written; ///< by somebody else
    QSet<QString> m_twins;                                           ///< their MAC address
    int m_lives = 0;
    QMap<QString, int> m_endings;
    QStringList m_notes; ///< milliseconds since the epoch, and what happened
};
