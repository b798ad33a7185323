// SPDX-License-Identifier: MIT
#include "simulator/virtual_box.h"

#include "simulator/box_core.h"
#include "simulator/simulator_thread.h"

#include <QFile>
#include <QMetaMethod>

#include <mutex>

namespace sim
{
namespace
{

BoxSetup setupOf(const QString& address, BoxModel model)
{
    BoxSetup setup;
    setup.address = address;
    setup.model = model;
    return setup;
}

} // namespace

QString modelWord(BoxModel model)
{
    switch (model) {
    case BoxModel::Orbit:
        return QStringLiteral("orbit");
    case BoxModel::River:
        return QStringLiteral("river");
    case BoxModel::Lantern:
        return QStringLiteral("lantern");
    case BoxModel::Stranger:
        return QStringLiteral("stranger");
    case BoxModel::Kora:
        break;
    }
    return QStringLiteral("kora");
}

bool readModel(const QString& word, BoxModel* model)
{
    for (const BoxModel each : {BoxModel::Kora, BoxModel::Orbit, BoxModel::River, BoxModel::Lantern,
                                BoxModel::Stranger}) {
        if (word == modelWord(each)) {
            *model = each;
            return true;
        }
    }
    return false;
}

/// What the core tells a handle and, through it, the network that the box belongs to.
struct VirtualBox::Hook {
    std::mutex mutex;
    ReachableHook reachable; // guarded by mutex
};

VirtualBox::VirtualBox(const QString& address, BoxModel model, QObject* parent)
    : VirtualBox(setupOf(address, model), parent)
{
}

VirtualBox::VirtualBox(const BoxSetup& setup, QObject* parent)
    : QObject(parent), m_thread(SimulatorThread::shared()), m_hook(std::make_unique<Hook>())
{
    qRegisterMetaType<sim::BoxRequest>("sim::BoxRequest");
    BoxCore::Reports reports;
    reports.requested = [this](const BoxRequest& request) {
        if (m_isListened) {
            QMetaObject::invokeMethod(
                this, [this, request] { emit requested(request); }, Qt::QueuedConnection);
        }
    };
    reports.reachable = [this](const QString& at, bool reachable) {
        {
            const std::lock_guard<std::mutex> lock(m_hook->mutex);
            if (m_hook->reachable)
                m_hook->reachable(at, reachable);
        }
        QMetaObject::invokeMethod(
            this, [this, reachable] { emit reachableChanged(reachable); }, Qt::QueuedConnection);
    };
    m_core = std::make_unique<BoxCore>(setup, reports);
    m_thread->adopt(m_core.get());
}

VirtualBox::~VirtualBox()
{
    m_thread->run([this] { m_core.reset(); });
}

bool VirtualBox::plugIn()
{
    bool done = false;
    m_thread->run([&] { done = m_core->plugIn(); });
    return done;
}

void VirtualBox::unplug()
{
    m_thread->run([this] { m_core->unplug(); });
}

bool VirtualBox::moveTo(const QString& address)
{
    bool done = false;
    m_thread->run([&] { done = m_core->moveTo(address); });
    return done;
}

bool VirtualBox::rebootTo(const QString& address)
{
    bool done = false;
    m_thread->run([&] { done = m_core->rebootTo(address); });
    return done;
}

void VirtualBox::setLease(const QString& address)
{
    m_thread->run([&] { m_core->setLease(address); });
}

void VirtualBox::reboot()
{
    m_thread->run([this] { m_core->reboot(); });
}

bool VirtualBox::isOn() const
{
    return m_core->isOn();
}

bool VirtualBox::isReachable() const
{
    return m_core->isReachable();
}

QString VirtualBox::address() const
{
    return m_core->address();
}

BoxModel VirtualBox::model() const
{
    return m_core->setup().model;
}

QString VirtualBox::errorString() const
{
    QString error;
    m_thread->run([&] { error = m_core->errorString(); });
    return error;
}

void VirtualBox::setRebootTime(int rebootMs, int restartMs)
{
    m_thread->run([=] { m_core->setTimes(rebootMs, restartMs); });
}

QString VirtualBox::parameter(const QString& name) const
{
    return m_core->state().parameter(name);
}

void VirtualBox::setParameter(const QString& name, const QString& value)
{
    m_core->state().setParameter(name, value);
}

QMap<QString, QString> VirtualBox::parameters() const
{
    return m_core->state().parameters();
}

void VirtualBox::setDecodeSources(const QStringList& sources)
{
    m_core->state().setDecodeSources(sources);
}

QStringList VirtualBox::recordings() const
{
    QStringList names;
    for (const Recording& recording : m_core->state().recordings())
        names << recording.name;
    return names;
}

void VirtualBox::addRecording(const QString& name, const QByteArray& content)
{
    Recording recording{name, {}};
    if (!content.isEmpty()) {
        recording.path = m_core->recordingPath(QString::number(m_nextContent++));
        QFile file(recording.path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qWarning("cannot keep the recording %s", qPrintable(name));
    }
    m_core->state().addRecording(recording);
}

void VirtualBox::removeRecording(const QString& name)
{
    m_core->removeFile(m_core->state().takeRecording(name));
}

BoxActivity VirtualBox::activity() const
{
    return m_core->state().activity();
}

void VirtualBox::addFault(const Fault& fault)
{
    m_core->faults().add(fault);
    m_thread->run([this] { m_core->applyFaults(); });
}

bool VirtualBox::addFault(const QString& line)
{
    const std::optional<Fault> fault = parseFault(line);
    if (fault)
        addFault(*fault);
    return fault.has_value();
}

void VirtualBox::clearFaults()
{
    m_core->faults().clear();
    m_thread->run([this] { m_core->applyFaults(); });
}

void VirtualBox::clearFault(FaultKind kind)
{
    m_core->faults().clear(kind);
    m_thread->run([this] { m_core->applyFaults(); });
}

QVector<Fault> VirtualBox::faults() const
{
    return m_core->faults().all();
}

QVector<BoxRequest> VirtualBox::requests() const
{
    return m_core->state().requests();
}

void VirtualBox::clearRequests()
{
    m_core->state().clearRequests();
}

void VirtualBox::sendStreamEvent(const QString& text)
{
    m_thread->run([&] { m_core->streamEvents().send(text); });
}

void VirtualBox::sendMediaEvent(const QString& text)
{
    m_thread->run([&] { m_core->mediaEvents().send(text); });
}

int VirtualBox::streamListeners() const
{
    return m_core->streamEvents().listeners();
}

int VirtualBox::mediaListeners() const
{
    return m_core->mediaEvents().listeners();
}

void VirtualBox::dropEventClients()
{
    m_thread->run([this] {
        m_core->streamEvents().dropClients();
        m_core->mediaEvents().dropClients();
    });
}

void VirtualBox::connectNotify(const QMetaMethod& signal)
{
    if (signal == QMetaMethod::fromSignal(&VirtualBox::requested))
        m_isListened = true;
}

void VirtualBox::setReachableHook(ReachableHook hook)
{
    const std::lock_guard<std::mutex> lock(m_hook->mutex);
    m_hook->reachable = std::move(hook);
}

} // namespace sim
