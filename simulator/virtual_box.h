// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/box_state.h"
#include "simulator/faults.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>

namespace sim
{

class BoxCore;
class SimulatorThread;

/// What kind of box it is: KORA, one of those that have only a web page, or no box at all: somebody
/// else's web server, at the ports at which boxes are looked for.
enum class BoxModel { Kora, Orbit, River, Lantern, Stranger };

/// The word of a model in scenario files: "kora", "orbit", "river", "lantern", "stranger".
QString modelWord(BoxModel model);
/// False when no model has this word.
bool readModel(const QString& word, BoxModel* model);

/// How a box is made. The ports are those of real boxes; change them only where a test has to.
struct BoxSetup {
    QString address; ///< dotted IPv4
    BoxModel model = BoxModel::Kora;
    int number = 0; ///< makes boxes differ; 0: the last number of the address
    /// Model names on the dashboard page ("ORBIT"); empty: that of `model`, and none, so no web
    /// port at all, for a KORA box.
    QStringList dashboard;
    int rebootMs = 10000;  ///< how long a reboot or firmware change takes
    int restartMs = 2000;  ///< how long a restart of the box's software takes; it answers ping
    QString recordingsDir; ///< where recordings are kept; empty: a folder of the box's own
    quint16 apiPort = 8081;
    quint16 streamEventsPort = 8001;
    quint16 mediaEventsPort = 8002;
    quint16 livePort = 8090;
    quint16 webPort = 80; ///< below 1024 a system may ask for privileges
    /// Allow addresses outside of 127.0.0.0/8: only for a network namespace of the run's own.
    bool anyAddress = false;
};

/// A box on the network that is not there: its whole protocol on real sockets, its state, its
/// reboots, firmware changes and recordings, and faults on demand.
///
/// The box itself lives in the simulator's own thread. This is its handle: the functions may be
/// called from any thread, the signals arrive in the thread that made the handle. Making and
/// plugging needs a QCoreApplication.
class VirtualBox : public QObject
{
    Q_OBJECT

public:
    explicit VirtualBox(const QString& address, BoxModel model = BoxModel::Kora,
                        QObject* parent = nullptr);
    explicit VirtualBox(const BoxSetup& setup, QObject* parent = nullptr);
    ~VirtualBox() override; ///< unplugs

    /// Power on; back at once. False when a port cannot be opened, see errorString().
    bool plugIn();
    /// Power off: every port and connection is closed when this returns.
    void unplug();
    /// Takes another address, as if a DHCP server had given it; a box that is on is on there when
    /// this returns. False: the address is not free or not allowed, and the box is off.
    bool moveTo(const QString& address);
    /// Reboots, and comes back under another address, which may still be another's now. False when
    /// that one is not allowed.
    bool rebootTo(const QString& address);
    /// The address that the network gives it at its next start, unless it has a fixed one.
    void setLease(const QString& address);
    /// As the command "reboot" does it, but without a command.
    void reboot();

    bool isOn() const;        ///< plugged in, and neither rebooting nor restarting
    bool isReachable() const; ///< answers ping
    QString address() const;
    BoxModel model() const;
    QString errorString() const; ///< of the last plugIn() or moveTo() that failed

    void setRebootTime(int rebootMs, int restartMs);

    QString parameter(const QString& name) const;
    void setParameter(const QString& name, const QString& value); ///< unchecked
    QMap<QString, QString> parameters() const;
    /// The list of eParam_NDIDecodeList, entries like "STUDIO-PC (Camera 1): 127.77.0.200:5961".
    void setDecodeSources(const QStringList& sources);

    QStringList recordings() const; ///< names, newest first, as eParam_RecordList gives them
    /// Adds a recording with this content; without content, /media/ makes a ten-second film for it
    /// when first asked.
    void addRecording(const QString& name, const QByteArray& content = {});
    /// As a box's own page would do it.
    void removeRecording(const QString& name);
    BoxActivity activity() const;

    void addFault(const Fault& fault);
    /// As parseFault() reads it: "slow 3000 on reboot". False when it is not understood.
    bool addFault(const QString& line);
    void clearFaults();
    void clearFault(FaultKind kind);
    QVector<Fault> faults() const;

    QVector<BoxRequest> requests() const; ///< of all HTTP ports but the live stream's, oldest first
    void clearRequests();

    /// Sends a text to all who listen on port 8001 or 8002.
    void sendStreamEvent(const QString& text);
    void sendMediaEvent(const QString& text);
    int streamListeners() const; ///< clients that have sent "hx_meta=on"
    int mediaListeners() const;
    void dropEventClients(); ///< closes the event connections; the ports stay open

signals:
    /// A request has been read; its answer may still be to come.
    void requested(const sim::BoxRequest& request);
    /// The box has begun or ceased to answer ping at its address.
    void reachableChanged(bool reachable);

protected:
    void connectNotify(const QMetaMethod& signal) override;

private:
    friend class VirtualLan;
    /// Told in the simulator's thread of each address that begins or ceases to answer ping.
    using ReachableHook = std::function<void(const QString& address, bool reachable)>;
    void setReachableHook(ReachableHook hook);

    struct Hook;

    const std::shared_ptr<SimulatorThread> m_thread;
    const std::unique_ptr<Hook> m_hook;
    std::unique_ptr<BoxCore> m_core; // lives in m_thread
    std::atomic<bool> m_isListened{false};
    std::atomic<int> m_nextContent{1};
};

} // namespace sim

Q_DECLARE_METATYPE(sim::BoxRequest)
