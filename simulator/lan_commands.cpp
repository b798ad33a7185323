// SPDX-License-Identifier: MIT
#include "simulator/lan_commands.h"

#include "simulator/virtual_lan.h"

#include <QDateTime>

namespace sim
{
namespace
{

LanCommands::Answer refuse(const QString& why)
{
    return {false, false, why};
}

QString stateWord(const VirtualBox& box)
{
    if (box.isOn())
        return QStringLiteral("on");
    return box.isReachable() ? QStringLiteral("restarting") : QStringLiteral("off");
}

QString faultText(const VirtualBox& box)
{
    QStringList lines;
    for (const Fault& fault : box.faults())
        lines << faultLine(fault);
    return lines.join(QStringLiteral("; "));
}

QString logText(const VirtualBox& box)
{
    QStringList lines;
    for (const BoxRequest& request : box.requests()) {
        const QString time =
            QDateTime::fromMSecsSinceEpoch(request.time).toString(QStringLiteral("hh:mm:ss.zzz"));
        const QByteArray said = request.method == "GET" ? request.query : request.body;
        lines << QStringLiteral("%1 %2 %3 %4")
                     .arg(time, QString::fromUtf8(request.method), QString::fromUtf8(request.path),
                          QString::fromUtf8(said.left(300).simplified()));
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

LanCommands::LanCommands(VirtualLan* lan) : m_lan(lan) {}

QString LanCommands::help()
{
    return QStringLiteral("list                    the boxes, their state and faults\n"
                          "add IP [MODEL]          one more, or \"stranger\": no box at all\n"
                          "unplug IP               power off\n"
                          "plug IP                 power on\n"
                          "reboot IP               reboot without being told by a client\n"
                          "move IP NEWIP           another address, as from a DHCP server\n"
                          "swap IP IP2             two reboot and exchange addresses\n"
                          "set IP NAME VALUE       change any parameter on the box\n"
                          "fault IP FAULT [AMOUNT] [on TARGET] [times N] [as TEXT]\n"
                          "clear IP                take all faults away\n"
                          "log IP                  the requests it got\n"
                          "quit\n"
                          "faults: ") +
           faultWords().join(QLatin1Char(' '));
}

LanCommands::Answer LanCommands::run(const QString& line)
{
    QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return {};
    const QString command = words.takeFirst();
    if (command == QLatin1String("quit"))
        return {true, true, {}};
    if (command == QLatin1String("help"))
        return {true, false, help()};
    if (command == QLatin1String("list"))
        return list();
    if (words.isEmpty())
        return refuse(QStringLiteral("unknown command or address missing: %1").arg(command));
    const QString address = words.takeFirst();
    return onBox(command, address, words);
}

LanCommands::Answer LanCommands::onBox(const QString& command, const QString& address,
                                       const QStringList& rest)
{
    VirtualBox* const box = m_lan->find(address);
    if (command == QLatin1String("add"))
        return add(address, rest.value(0));
    if (box == nullptr)
        return refuse(QStringLiteral("no box at %1").arg(address));
    if (command == QLatin1String("unplug")) {
        box->unplug();
        return {};
    }
    if (command == QLatin1String("plug"))
        return box->plugIn() ? Answer{} : refuse(box->errorString());
    if (command == QLatin1String("reboot")) {
        box->reboot();
        return {};
    }
    if (command == QLatin1String("move") && rest.size() == 1) {
        if (m_lan->find(rest.first()) != nullptr)
            return refuse(QStringLiteral("%1 is taken").arg(rest.first()));
        return box->moveTo(rest.first()) ? Answer{} : refuse(box->errorString());
    }
    if (command == QLatin1String("swap") && rest.size() == 1) {
        VirtualBox* const other = m_lan->find(rest.first());
        if (other == nullptr || other == box)
            return refuse(QStringLiteral("no other box at %1").arg(rest.first()));
        box->rebootTo(other->address());
        other->rebootTo(address);
        return {};
    }
    if (command == QLatin1String("set") && rest.size() >= 2) {
        box->setParameter(rest.first(), rest.mid(1).join(QLatin1Char(' ')));
        return {};
    }
    if (command == QLatin1String("fault")) {
        QString error;
        const auto fault = parseFault(rest.join(QLatin1Char(' ')), &error);
        if (!fault)
            return refuse(error);
        box->addFault(*fault);
        return {};
    }
    if (command == QLatin1String("clear")) {
        box->clearFaults();
        return {};
    }
    if (command == QLatin1String("log"))
        return {true, false, logText(*box)};
    return refuse(QStringLiteral("not understood: %1").arg(command));
}

LanCommands::Answer LanCommands::add(const QString& address, const QString& model)
{
    BoxSetup setup = m_lan->ordinarySetup(address);
    if (!readModel(model.isEmpty() ? modelWord(setup.model) : model, &setup.model))
        return refuse(QStringLiteral("unknown model %1").arg(model));
    VirtualBox* const box = m_lan->add(setup);
    if (box == nullptr)
        return refuse(m_lan->errorString());
    return box->plugIn() ? Answer{} : refuse(box->errorString());
}

LanCommands::Answer LanCommands::list() const
{
    QStringList lines;
    for (const VirtualBox* box : m_lan->boxes()) {
        lines << QStringLiteral("%1 %2 %3 %4 %5")
                     .arg(box->address(), -15)
                     .arg(modelWord(box->model()), -7)
                     .arg(stateWord(*box), -10)
                     .arg(box->parameter(QStringLiteral("eParam_FirmVersion")), -9)
                     .arg(faultText(*box))
                     .trimmed();
    }
    return {true, false, lines.join(QLatin1Char('\n'))};
}

} // namespace sim
