// SPDX-License-Identifier: MIT
#include "simulator/scenario.h"

#include "simulator/lan_commands.h"
#include "simulator/virtual_lan.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

namespace sim
{
namespace
{

/// The first key of `object` that is not one of `known`, or an empty text.
QString strangeKey(const QJsonObject& object, const QStringList& known)
{
    for (const QString& key : object.keys()) {
        if (!known.contains(key))
            return key;
    }
    return {};
}

QStringList textList(const QJsonValue& value)
{
    QStringList texts;
    for (const QJsonValue& each : value.toArray())
        texts << each.toString();
    return texts;
}

} // namespace

Scenario::Scenario(QObject* parent) : QObject(parent) {}

bool Scenario::refuse(const QString& why)
{
    m_error = why;
    return false;
}

bool Scenario::load(const QString& path, VirtualLan* lan)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse(QStringLiteral("cannot read %1").arg(path));
    QJsonParseError parsed;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parsed);
    if (!document.isObject()) {
        return refuse(QStringLiteral("%1 is no JSON object (byte %2: %3)")
                          .arg(path)
                          .arg(parsed.offset)
                          .arg(parsed.errorString()));
    }
    const QJsonObject root = document.object();
    const QString strange = strangeKey(
        root, {QStringLiteral("boxes"), QStringLiteral("steps"), QStringLiteral("about")});
    if (!strange.isEmpty())
        return refuse(QStringLiteral("unknown key \"%1\"").arg(strange));
    for (const QJsonValue& box : root.value(QStringLiteral("boxes")).toArray()) {
        if (!loadBox(box.toObject(), lan))
            return false;
    }
    for (const QJsonValue& step : root.value(QStringLiteral("steps")).toArray()) {
        if (!loadStep(step.toObject()))
            return false;
    }
    return true;
}

bool Scenario::loadBox(const QJsonObject& object, VirtualLan* lan)
{
    const auto value = [&object](const char* key) { return object.value(QLatin1String(key)); };
    BoxSetup setup = lan->ordinarySetup(value("address").toString());
    const QString strange = strangeKey(
        object, {QStringLiteral("address"), QStringLiteral("model"), QStringLiteral("dashboard"),
                 QStringLiteral("parameters"), QStringLiteral("decode_sources"),
                 QStringLiteral("recordings"), QStringLiteral("faults"), QStringLiteral("plugged"),
                 QStringLiteral("reboot_seconds")});
    if (!strange.isEmpty())
        return refuse(QStringLiteral("box %1: unknown key \"%2\"").arg(setup.address, strange));
    if (!readModel(value("model").toString(QStringLiteral("kora")), &setup.model))
        return refuse(QStringLiteral("box %1: unknown model").arg(setup.address));
    setup.dashboard = textList(value("dashboard"));
    VirtualBox* box = lan->find(setup.address);
    box = box != nullptr ? box : lan->add(setup);
    if (box == nullptr)
        return refuse(lan->errorString());
    if (object.contains(QLatin1String("reboot_seconds"))) {
        const int ms = int(value("reboot_seconds").toDouble() * 1000);
        box->setRebootTime(ms, qMin(ms, 2000));
    }
    const QJsonObject parameters = value("parameters").toObject();
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        box->setParameter(it.key(), it.value().toString());
    if (object.contains(QLatin1String("decode_sources")))
        box->setDecodeSources(textList(value("decode_sources")));
    for (const QString& name : textList(value("recordings")))
        box->addRecording(name);
    for (const QString& line : textList(value("faults"))) {
        QString error;
        const auto fault = parseFault(line, &error);
        if (!fault)
            return refuse(QStringLiteral("box %1: %2").arg(setup.address, error));
        box->addFault(*fault);
    }
    if (!value("plugged").toBool(true))
        m_unplugged << setup.address;
    return true;
}

bool Scenario::loadStep(const QJsonObject& object)
{
    const QString strange =
        strangeKey(object, {QStringLiteral("after_seconds"), QStringLiteral("command")});
    const double seconds = object.value(QStringLiteral("after_seconds")).toDouble(-1);
    const QString command = object.value(QStringLiteral("command")).toString();
    if (!strange.isEmpty() || seconds < 0 || command.isEmpty())
        return refuse(QStringLiteral("a step needs \"after_seconds\", \"command\" and no more"));
    m_steps.append({int(seconds * 1000), command});
    return true;
}

void Scenario::start(LanCommands* commands)
{
    for (const Step& step : qAsConst(m_steps)) {
        QTimer::singleShot(step.ms, this, [this, commands, step] {
            const LanCommands::Answer answer = commands->run(step.command);
            emit stepped(answer.ok ? step.command
                                   : step.command + QStringLiteral(": ") + answer.text);
        });
    }
}

} // namespace sim
