// SPDX-License-Identifier: MIT
#include "simulator/box_core.h"

#include "simulator/web_page.h"

#include <QDir>
#include <QHostAddress>

namespace sim
{
namespace
{

constexpr int conflictRetryMs = 1000; // how often a box asks again for an address that is taken

QStringList dashboardModels(const BoxSetup& setup)
{
    if (!setup.dashboard.isEmpty() || setup.model == BoxModel::Kora)
        return setup.dashboard;
    return {modelWord(setup.model).toUpper()};
}

BoxSetup complete(BoxSetup setup)
{
    if (setup.number == 0)
        setup.number = setup.address.section(QLatin1Char('.'), -1).toInt();
    return setup;
}

} // namespace

BoxCore::BoxCore(const BoxSetup& setup, Reports reports)
    : m_setup(complete(setup))
    , m_reports(std::move(reports))
    , m_state(m_setup.number, m_setup.address)
    , m_api(&m_state, &m_faults, this, m_reports.requested)
    , m_streamEvents(
          &m_faults, [this](int tick) { return streamMessages(tick); }, this)
    , m_mediaEvents(
          &m_faults, [this](int tick) { return mediaMessages(tick); }, this)
    , m_recorder(this)
    , m_live(this)
    , m_srt(this)
    , m_wake(this)
    , m_change(this)
    , m_lease(m_setup.address)
    , m_address(m_setup.address)
{
    m_wake.setSingleShot(true);
    connect(&m_wake, &QTimer::timeout, this, &BoxCore::wake);
    m_change.setSingleShot(true);
    connect(&m_change, &QTimer::timeout, this, [this] { install(m_nextVersion); });
    connect(&m_recorder, &Recorder::over, this, &BoxCore::keepRecording);
    if (!m_setup.recordingsDir.isEmpty())
        QDir().mkpath(m_setup.recordingsDir);
}

BoxCore::~BoxCore()
{
    unplug();
}

bool BoxCore::plugIn()
{
    return m_power == Power::On || powerOn();
}

void BoxCore::unplug()
{
    m_wake.stop();
    breakChange();
    closePorts();
    setPower(Power::Off);
}

bool BoxCore::moveTo(const QString& address)
{
    if (!mayUse(address)) {
        m_error = QStringLiteral("%1 is no loopback address").arg(address);
        return false;
    }
    const bool wasOn = m_power != Power::Off;
    unplug();
    m_lease = address;
    m_state.setParameter(QStringLiteral("eParam_IPAddress"), address);
    setAddress(address);
    return !wasOn || powerOn();
}

bool BoxCore::rebootTo(const QString& address)
{
    if (!mayUse(address)) {
        m_error = QStringLiteral("%1 is no loopback address").arg(address);
        return false;
    }
    m_lease = address;
    m_state.setParameter(QStringLiteral("eParam_IPAddress"), address);
    reboot();
    return true;
}

void BoxCore::reboot()
{
    QMetaObject::invokeMethod(this, [this] {
        m_state.changeActivity([](BoxActivity& activity) { ++activity.reboots; });
        goDown(Power::Rebooting, m_setup.rebootMs);
    });
}

void BoxCore::restartSoftware()
{
    QMetaObject::invokeMethod(this, [this] {
        m_state.changeActivity([](BoxActivity& activity) { ++activity.restarts; });
        goDown(Power::Restarting, m_setup.restartMs);
    });
}

void BoxCore::changeFirmware(const QString& version)
{
    QMetaObject::invokeMethod(this, [this, version] { beginChange(version); });
}

void BoxCore::beginChange(const QString& version)
{
    breakChange();
    const auto slow = m_faults.strike(FaultKind::OtaSlow, {QStringLiteral("ota")});
    if (!slow) {
        install(version);
        return;
    }
    m_nextVersion = version;
    m_state.changeActivity([](BoxActivity& activity) { activity.changingFirmware = true; });
    m_change.start(int(slow->amountOrDefault()));
}

void BoxCore::breakChange()
{
    if (!m_change.isActive())
        return;
    m_change.stop();
    m_state.changeActivity([](BoxActivity& activity) {
        activity.changingFirmware = false;
        ++activity.brokenChanges;
    });
}

void BoxCore::install(const QString& version)
{
    const QStringList tags = {QStringLiteral("ota")};
    const auto older = m_faults.strike(FaultKind::OtaFallsBack, tags);
    const bool keepsOld = bool(m_faults.strike(FaultKind::OtaOldVersion, tags));
    if (!keepsOld)
        m_state.setParameter(QStringLiteral("eParam_FirmVersion"), older ? older->text : version);
    if (m_faults.strike(FaultKind::OtaLosesSettings, tags))
        m_state.loseSettings();
    if (const auto reset = m_faults.strike(FaultKind::OtaResets, tags))
        m_state.resetSettings(reset->text.split(QLatin1Char(' ')));
    if (const auto move = m_faults.strike(FaultKind::OtaMoves, tags))
        m_lease = mayUse(move->text) ? move->text : m_lease;
    m_state.changeActivity([&version, changed = !keepsOld && !older](BoxActivity& activity) {
        activity.changingFirmware = false;
        if (changed)
            activity.changes << BoxChange{QDateTime::currentMSecsSinceEpoch(), version};
        ++activity.reboots;
    });
    goDown(Power::Rebooting, m_setup.rebootMs);
    if (m_faults.strike(FaultKind::OtaStaysAway, tags)) {
        m_wake.stop();
        setPower(Power::Off);
    }
}

void BoxCore::goDown(Power meanwhile, int ms)
{
    if (m_power == Power::Off) {
        return; // the plug was pulled first
    }
    breakChange();
    closePorts(); // first: who hears that the box is gone finds it gone
    setPower(meanwhile);
    m_wake.start(ms);
}

void BoxCore::wake()
{
    if (!powerOn())
        m_wake.start(conflictRetryMs);
}

bool BoxCore::powerOn()
{
    m_wake.stop();
    const QString address = bootAddress();
    if (!mayUse(address)) {
        m_error = QStringLiteral("%1 is no loopback address").arg(address);
        return false;
    }
    if (address != this->address()) {
        setPower(Power::Off); // a restarting box leaves its old address now
    }
    setAddress(address);
    if (!openPorts()) {
        closePorts();
        return false;
    }
    m_state.changeActivity([](BoxActivity& activity) { activity.unapplied = false; });
    setPower(Power::On);
    return true;
}

QString BoxCore::bootAddress() const
{
    const QString fixed = m_state.parameter(QStringLiteral("eParam_IPAddress"));
    const bool isFixed = m_state.parameter(QStringLiteral("eParam_DHCP")) == QLatin1String("0");
    return isFixed && mayUse(fixed) ? fixed : m_lease;
}

bool BoxCore::mayUse(const QString& address) const
{
    QHostAddress host;
    return host.setAddress(address) && host.protocol() == QAbstractSocket::IPv4Protocol &&
           !host.isEqual(QHostAddress::AnyIPv4) && (m_setup.anyAddress || host.isLoopback());
}

QString BoxCore::address() const
{
    const std::lock_guard<std::mutex> lock(m_addressMutex);
    return m_address;
}

void BoxCore::setAddress(const QString& address)
{
    const std::lock_guard<std::mutex> lock(m_addressMutex);
    m_address = address;
}

void BoxCore::setTimes(int rebootMs, int restartMs)
{
    m_setup.rebootMs = rebootMs;
    m_setup.restartMs = restartMs;
}

void BoxCore::setPower(Power power)
{
    m_power = power;
    m_isOn = power == Power::On;
    const bool reachable =
        (power == Power::On || power == Power::Restarting) && !m_faults.has(FaultKind::NoPing);
    if (m_isReachable.exchange(reachable) != reachable)
        m_reports.reachable(address(), reachable);
}

void BoxCore::applyFaults()
{
    setPower(m_power); // for ping
    if (m_power != Power::On)
        return;
    const bool refuses = m_faults.has(FaultKind::Refuse);
    const bool isOpen = m_apiServer || m_webServer;
    if (refuses && isOpen) {
        closePorts();
    } else if (!refuses && !isOpen) {
        openPorts();
    }
}

bool BoxCore::openPorts()
{
    if (m_faults.has(FaultKind::Refuse))
        return true;
    if (!openWeb(m_setup.webPort, &m_webServer))
        return false;
    if (m_setup.model == BoxModel::Stranger)
        return openWeb(m_setup.apiPort, &m_apiServer);
    if (m_setup.model != BoxModel::Kora)
        return true;
    HttpHandlers handlers;
    handlers.handle = [this](const HttpRequest& request) { return m_api.handle(request); };
    handlers.beforeUpload = [this] { return m_api.beforeUpload(); };
    handlers.postPaths = KoraApi::postPaths();
    const QString address = this->address();
    m_apiServer = std::make_unique<HttpServer>(address, m_setup.apiPort, handlers);
    quint16 port = m_setup.apiPort;
    bool open = m_apiServer->start();
    if (open) {
        port = m_setup.streamEventsPort;
        open = m_streamEvents.open(address, port);
    }
    if (open) {
        port = m_setup.mediaEventsPort;
        open = m_mediaEvents.open(address, port);
    }
    if (!open)
        m_error = QStringLiteral("cannot open %1:%2").arg(address).arg(port);
    return open;
}

bool BoxCore::openWeb(quint16 port, std::unique_ptr<HttpServer>* server)
{
    const QStringList models = dashboardModels(m_setup);
    if (models.isEmpty())
        return true;
    const QByteArray page = dashboardPage(models, address(), m_setup.number);
    HttpHandlers handlers;
    handlers.handle = [this, page](const HttpRequest& request) {
        return m_api.handleWeb(request, page);
    };
    *server = std::make_unique<HttpServer>(address(), port, handlers);
    if ((*server)->start())
        return true;
    m_error = QStringLiteral("cannot open %1:%2").arg(address()).arg(port);
    return false;
}

void BoxCore::closePorts()
{
    m_apiServer.reset();
    m_webServer.reset();
    m_streamEvents.close();
    m_mediaEvents.close();
    m_srt.stop();
    m_live.stop();
    m_recorder.abort();
    m_state.changeActivity([](BoxActivity& activity) {
        activity.recordingFile.clear();
        activity.streamTarget.clear();
        activity.decodeSource.clear();
    });
}

QString BoxCore::recordingPath(const QString& name) const
{
    const QString folder =
        m_setup.recordingsDir.isEmpty() ? m_ownRecordings.path() : m_setup.recordingsDir;
    return folder + QLatin1Char('/') + name;
}

} // namespace sim
