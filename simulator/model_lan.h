// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <queue>
#include <vector>

namespace sim
{

/// Time that passes as fast as its events can be dealt with. Milliseconds.
class ModelTime
{
public:
    qint64 now() const { return m_now; }
    /// `event` happens `delayMs` from now; those of the same moment in the order of their calls.
    void in(qint64 delayMs, std::function<void()> event);
    /// Everything up to and with `ms` happens.
    void runUntil(qint64 ms);

private:
    struct Event {
        qint64 at;
        quint64 number;
        std::function<void()> run;
    };
    struct Later {
        bool operator()(const Event& a, const Event& b) const
        {
            return a.at != b.at ? a.at > b.at : a.number > b.number;
        }
    };

    qint64 m_now = 0;
    quint64 m_number = 0;
    std::priority_queue<Event, std::vector<Event>, Later> m_events;
};

/// How a modelled box behaves: drawn once, from a seed. Milliseconds.
struct ModelBoxHabits {
    enum class Change { Normal, StaysAway, FallsBack, OlderVersion, Refuses, NeverBegins };
    enum class Answer { AtOnce, Late, Never, HangsUp };

    int readMs = 20;
    int writeMs = 30;
    int uploadMs = 8000;
    int uploadFailures = 0;  ///< uploads that are refused before one is taken
    int damagedUploads = 0;  ///< uploads that arrive as something else before one is whole
    bool takesUpload = true; ///< else each of them is refused
    Change change = Change::Normal;
    Answer answer = Answer::AtOnce;
    int changeMs = 1000;         ///< how long it keeps answering before it goes away to change over
    bool answersErrors = false;  ///< to each read, while it changes over
    int earlyMs = 0;             ///< so long before it goes it tells the new version already
    int awayMs = 12000;          ///< each restart
    bool diesOfRestart = false;  ///< an ordered one is its last
    bool movesOnRestart = false; ///< gets another address when that is assigned
    QStringList resets;          ///< settings that the new firmware puts back
    QString unreadable;          ///< a parameter whose reads are never answered
    QString missing;             ///< a parameter that it does not have
    QString denied;              ///< a parameter that it denies for `denyMs` after its start
    int denyMs = 0;
    QString unwritable;    ///< a parameter that it refuses
    QString misunderstood; ///< a parameter that it takes as something else
};

/// A box without sockets, on a ModelLan. It notes what may never happen to it.
struct ModelBox {
    QString mac;
    QString address; ///< where it answers, or did
    bool isOn = true;
    bool isDeaf = false;             ///< the network between it and us is gone for a moment
    QMap<QString, QString> settings; ///< with version and MAC address, by parameter
    ModelBoxHabits habits;

    bool hasPackage = false;
    bool isDamaged = false;    ///< the package
    int wholePackages = 0;     ///< that it has had
    bool isChanging = false;   ///< from its activation to the end of its change
    qint64 orderedAt = -1;     ///< its last activation
    bool tellsPackage = false; ///< as its version, before it runs it
    qint64 reachableSince = -1000000;
    qint64 deniesUntil = 0;
    QMap<QString, QString> writtenElsewhere; ///< settings, by somebody else
    bool isInOtherHands = false;             ///< somebody else has changed its version
    bool unapplied = false;                  ///< something was written since its last start
    int life = 0; ///< restarts: what was asked in an earlier life is not answered
    QString packageVersion;
    struct Change {
        qint64 at;
        QString version;
    };
    std::vector<Change> changes; ///< to a package, by an activation
    QSet<QString> untold;        ///< settings that were written and not read again since
    bool writtenApart = false;   ///< it or its twin, while the other could not be found
    QStringList violations;
};

/// Boxes and the network between, as events in a ModelTime: who is asked is who answers at the
/// address when the question arrives.
class ModelLan
{
public:
    using Answered = std::function<void(const QString& answer)>;

    /// How long a restart may not come after an activation that nobody saw ended: the allowance.
    static constexpr qint64 AllowanceMs = 600000;
    /// Questions without an answer are given up then.
    static constexpr int ReadLimitMs = 2000;
    static constexpr int WriteLimitMs = 3000;

    explicit ModelLan(ModelTime& time) : m_time(time) {}

    ModelBox& add(const QString& mac, const QString& address);
    const std::vector<std::unique_ptr<ModelBox>>& boxes() const { return m_boxes; }
    /// Who answers at `ip`; null when nobody does.
    ModelBox* at(const QString& ip) const;
    /// Called when a box begins to answer at an address.
    void setAppeared(std::function<void(const ModelBox&)> appeared)
    {
        m_appeared = std::move(appeared);
    }

    /// Called when something arrives at a box that changes it: the name of a setting, "upload",
    /// "activate" or "restart".
    void setActed(std::function<void(const ModelBox&, const QString& act)> acted)
    {
        m_acted = std::move(acted);
    }

    /// After how long it is told that nobody is there: at once where a computer refuses, never
    /// before the limit where there is none.
    void setAbsentMs(int ms) { m_absentMs = ms; }
    /// For whoever looks for the reason of something: all that is asked and happens.
    void setTrace(std::function<void(const QString& line)> trace) { m_trace = std::move(trace); }

    void note(const QString& line) const { trace(line); }

    void read(const QString& ip, const QString& parameter, Answered answered);
    void write(const QString& ip, const QString& parameter, const QString& value,
               Answered answered);
    void upload(const QString& ip, const QString& version, const QString& md5, Answered answered);
    void abandonUpload(const QString& ip);
    void activate(const QString& ip, Answered answered);
    void restart(const QString& ip, Answered answered);

    /// Off, and on again after `awayMs`, at `address` when it is not empty.
    void powerCycle(ModelBox& box, int awayMs, const QString& address = QString());
    /// Each answers at the other's address from now on, as where two claim the same one.
    void swapAddresses(ModelBox& a, ModelBox& b);
    void setDeaf(ModelBox& box, int ms);
    /// So many of a hundred questions, writes and orders get lost on their way, and as many
    /// answers.
    void setLoss(int percent) { m_lossPercent = percent; }
    /// An address that no box has had.
    QString freshAddress();

private:
    bool isLost();
    template <class... Words> void trace(const Words&... words) const
    {
        if (m_trace)
            m_trace(QStringList{words...}.join(QLatin1Char(' ')));
    }
    /// Asks whoever is at `ip` when the question arrives; `handle` acts at once and says what is
    /// answered after the time that the box takes, unless it has gone meanwhile.
    void ask(const QString& ip, int limitMs, int ModelBoxHabits::*workMs,
             std::function<QString(ModelBox&)> handle, Answered answered);
    void acted(const ModelBox& box, const QString& act) const;
    /// Since then it has told its MAC address to whoever asked.
    bool tellsMac(const ModelBox& box, qint64 since) const;
    void noteTwins(ModelBox& box, const QString& parameter);
    /// Off; a number of this time of its life.
    int turnOff(ModelBox& box);
    void goAway(ModelBox& box, int awayMs, const std::function<void()>& before);
    void changeOver(ModelBox& box);
    void comeBack(ModelBox& box, const QString& address);

    ModelTime& m_time;
    std::vector<std::unique_ptr<ModelBox>> m_boxes;
    std::function<void(const ModelBox&)> m_appeared;
    std::function<void(const ModelBox&, const QString&)> m_acted;
    std::function<void(const QString&)> m_trace;
    QHash<QString, int> m_uploads; ///< number of the latest upload to an address
    int m_nextAddress = 1;
    int m_absentMs = 5;
    int m_lossPercent = 0;
    quint32 m_asked = 0;
};

} // namespace sim
