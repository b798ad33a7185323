// SPDX-License-Identifier: MIT
#include "simulator/virtual_lan.h"

#include "simulator/plugged_file.h"

#include <QDir>
#include <QHostAddress>

namespace sim
{
namespace
{

QString pluggedPath(const QString& runDir)
{
    if (runDir.isEmpty())
        return {};
    QDir().mkpath(runDir);
    return runDir + QStringLiteral("/plugged");
}

/// What each box of a plan sees on the network to decode.
QStringList decodeSources(const QString& base)
{
    return {QStringLiteral("STUDIO-PC (Camera 1): %1.200:5961").arg(base),
            QStringLiteral("STUDIO-PC (Camera 2): %1.200:5962").arg(base),
            QStringLiteral("GRAPHICS (Lower Third): %1.201:5961").arg(base)};
}

void furnish(VirtualBox* box, const QString& base, int host)
{
    box->setDecodeSources(decodeSources(base));
    for (int i = 0; i < host % 4; ++i) {
        box->addRecording(QStringLiteral("Tarn_Hub_Recode202403%1%2%3.%4")
                              .arg(2 + i, 2, 10, QLatin1Char('0'))
                              .arg(9 + i, 2, 10, QLatin1Char('0'))
                              .arg(QStringLiteral("0503"),
                                   i % 2 == 0 ? QStringLiteral("mp4") : QStringLiteral("mov")));
    }
    // An operator's own name for one.
    if (host % 4 == 3)
        box->addRecording(QStringLiteral("Evening show %1.mp4").arg(host));
}

} // namespace

VirtualLan::VirtualLan(const QString& runDir, QObject* parent)
    : QObject(parent)
    , m_runDir(runDir)
    , m_plugged(std::make_unique<PluggedFile>(pluggedPath(runDir)))
{
}

VirtualLan::~VirtualLan()
{
    m_plugged->hold();
    m_boxes.clear();
    m_plugged->release();
}

VirtualBox* VirtualLan::add(const BoxSetup& setup)
{
    if (find(setup.address) != nullptr) {
        m_error = QStringLiteral("%1 is taken").arg(setup.address);
        return nullptr;
    }
    auto box = std::make_unique<VirtualBox>(setup);
    box->setReachableHook([plugged = m_plugged.get()](const QString& address, bool reachable) {
        plugged->set(address, reachable);
    });
    m_boxes.push_back(std::move(box));
    return m_boxes.back().get();
}

bool VirtualLan::populate(const LanPlan& plan)
{
    const auto subnet = QHostAddress::parseSubnet(plan.subnet);
    const int count = plan.boxes + (plan.web ? 3 : 0);
    if (subnet.second != 24 || subnet.first.protocol() != QAbstractSocket::IPv4Protocol) {
        m_error = QStringLiteral("\"%1\" is no subnet of the form a.b.c.0/24").arg(plan.subnet);
        return false;
    }
    if (plan.boxes < 0 || plan.first < 1 || plan.first + count - 1 > 254) {
        m_error = QStringLiteral("%1 boxes from number %2 do not fit into one subnet")
                      .arg(count)
                      .arg(plan.first);
        return false;
    }
    m_plan = plan;
    const QString base = subnet.first.toString().section(QLatin1Char('.'), 0, 2);
    for (int i = 0; i < plan.boxes; ++i) {
        if (!addPlanned(base, plan.first + i, BoxModel::Kora))
            return false;
    }
    int host = plan.first + plan.boxes;
    for (const BoxModel model : {BoxModel::Orbit, BoxModel::River, BoxModel::Lantern}) {
        if (plan.web && !addPlanned(base, host++, model))
            return false;
    }
    return true;
}

BoxSetup VirtualLan::ordinarySetup(const QString& address) const
{
    BoxSetup setup;
    setup.address = address;
    setup.rebootMs = m_plan.rebootMs;
    setup.restartMs = m_plan.restartMs;
    setup.webPort = m_plan.webPort;
    setup.anyAddress = m_plan.anyAddress;
    return setup;
}

bool VirtualLan::addPlanned(const QString& base, int host, BoxModel model)
{
    BoxSetup setup = ordinarySetup(base + QLatin1Char('.') + QString::number(host));
    setup.model = model;
    VirtualBox* const box = add(setup);
    if (box != nullptr && model == BoxModel::Kora)
        furnish(box, base, host);
    return box != nullptr;
}

bool VirtualLan::plugInAll(const QStringList& except)
{
    m_plugged->hold();
    bool done = true;
    for (const auto& box : m_boxes) {
        if (!except.contains(box->address()) && !box->plugIn()) {
            m_error = box->errorString();
            done = false;
            break;
        }
    }
    m_plugged->release();
    return done;
}

VirtualBox* VirtualLan::find(const QString& address) const
{
    for (const auto& box : m_boxes) {
        if (box->address() == address)
            return box.get();
    }
    return nullptr;
}

QVector<VirtualBox*> VirtualLan::boxes() const
{
    QVector<VirtualBox*> boxes;
    for (const auto& box : m_boxes)
        boxes.append(box.get());
    return boxes;
}

} // namespace sim
