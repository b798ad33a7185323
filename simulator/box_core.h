// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/box_state.h"
#include "simulator/event_feed.h"
#include "simulator/faults.h"
#include "simulator/http_server.h"
#include "simulator/kora_api.h"
#include "simulator/live_stream.h"
#include "simulator/recorder.h"
#include "simulator/srt_listener.h"
#include "simulator/virtual_box.h"

#include <QObject>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <mutex>

namespace sim
{

/// The works of a virtual box: power, ports, and what its actions set going. Lives in the
/// simulator's thread; what may be called from elsewhere says so.
class BoxCore : public QObject, private BoxHardware
{
    Q_OBJECT

public:
    /// What the core reports, from the simulator's thread or (requests) from workers.
    struct Reports {
        std::function<void(const BoxRequest&)> requested;
        std::function<void(const QString& address, bool reachable)> reachable;
    };

    BoxCore(const BoxSetup& setup, Reports reports);
    ~BoxCore() override;

    bool plugIn();
    void unplug();
    bool moveTo(const QString& address);
    /// Reboots and comes back there; a box that is off comes back there when it is plugged in.
    bool rebootTo(const QString& address);
    void reboot() override; // any thread
    /// The address that the network gives it at its next start, unless it has one of its own.
    void setLease(const QString& address) { m_lease = address; }
    /// Opens or closes what the present faults ask for.
    void applyFaults();
    void setTimes(int rebootMs, int restartMs);

    BoxState& state() { return m_state; }    // any thread
    FaultList& faults() { return m_faults; } // any thread
    EventFeed& streamEvents() { return m_streamEvents; }
    EventFeed& mediaEvents() { return m_mediaEvents; }
    const BoxSetup& setup() const { return m_setup; }  // any thread, except for the times
    bool isOn() const { return m_isOn; }               // any thread
    bool isReachable() const { return m_isReachable; } // any thread
    QString address() const;                           // any thread
    QString errorString() const { return m_error; }
    QString recordingPath(const QString& name) const;     // any thread
    void removeFile(const Recording& recording) override; // any thread

private:
    enum class Power { Off, On, Restarting, Rebooting };

    // BoxHardware, called from workers
    bool startRecording(const QString& fileName, HttpWire* wire) override;
    bool stopRecording(HttpWire* wire) override;
    QString startLive(quint16 srtPort, HttpWire* wire) override;
    void stopLive() override;
    void restartSoftware() override;
    void changeFirmware(const QString& version) override;

    /// Has `work` done in this object's thread, and waits until `isOver` says that its result is
    /// there, at most `ms`. False when the client has gone or the time is over.
    bool doAndWait(HttpWire* wire, int ms, const std::function<void()>& work,
                   const std::function<bool()>& isOver);
    void keepRecording(bool good);
    bool powerOn();
    void goDown(Power meanwhile, int ms);
    void wake();
    void beginChange(const QString& version);
    void breakChange();
    void install(const QString& version);
    bool openPorts();
    void closePorts();
    bool openWeb(quint16 port, std::unique_ptr<HttpServer>* server);
    void setPower(Power power);
    QString bootAddress() const;
    bool mayUse(const QString& address) const;
    void setAddress(const QString& address);
    QStringList streamMessages(int tick) const;
    QStringList mediaMessages(int tick) const;

    BoxSetup m_setup;
    const Reports m_reports;
    BoxState m_state;
    FaultList m_faults;
    KoraApi m_api;
    EventFeed m_streamEvents;
    EventFeed m_mediaEvents;
    Recorder m_recorder;
    LiveStream m_live;
    SrtListener m_srt;
    std::unique_ptr<HttpServer> m_apiServer;
    std::unique_ptr<HttpServer> m_webServer;
    QTimer m_wake;
    QTimer m_change; // runs while a slow change of firmware goes on
    QString m_nextVersion;
    Power m_power = Power::Off;
    QString m_lease; // the address that the network gives it
    QString m_error;
    QTemporaryDir m_ownRecordings;
    std::atomic<bool> m_isOn{false};
    std::atomic<bool> m_isReachable{false};
    mutable std::mutex m_addressMutex;
    QString m_address; // guarded by m_addressMutex
};

} // namespace sim
