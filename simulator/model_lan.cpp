// SPDX-License-Identifier: MIT
#include "simulator/model_lan.h"

#include "simulator/parameters.h"

#include <QStringBuilder>

#include <algorithm>

namespace sim
{
namespace
{

constexpr int wayMs = 2;

QString quoted(const QString& text)
{
    QString escaped = text;
    if (text.contains(QLatin1Char('\\')) || text.contains(QLatin1Char('"')))
        escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"))
            .replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') % escaped % QLatin1Char('"');
}

QString told(const QString& parameter, const QString& value)
{
    return QStringLiteral("{\"param_name\":") % quoted(parameter) % QStringLiteral(",\"value\":") %
           quoted(value) % QLatin1Char('}');
}

QString success()
{
    return QStringLiteral("{\"status\":\"success\"}");
}

QString failure()
{
    return QStringLiteral("{\"status\":\"failed\"}");
}

} // namespace

void ModelTime::in(qint64 delayMs, std::function<void()> event)
{
    m_events.push({m_now + delayMs, m_number++, std::move(event)});
}

void ModelTime::runUntil(qint64 ms)
{
    while (!m_events.empty() && m_events.top().at <= ms) {
        // Taken out before it is removed: nothing of it counts for the order.
        const auto run = std::move(const_cast<Event&>(m_events.top()).run);
        m_now = m_events.top().at;
        m_events.pop();
        run();
    }
    m_now = ms;
}

ModelBox& ModelLan::add(const QString& mac, const QString& address)
{
    auto box = std::make_unique<ModelBox>();
    box->mac = mac;
    box->address = address;
    box->settings = factorySettings(int(m_boxes.size()) + 1, address);
    box->settings[QStringLiteral("eParam_MACAddress")] = mac;
    m_boxes.push_back(std::move(box));
    return *m_boxes.back();
}

QString ModelLan::freshAddress()
{
    const int n = m_nextAddress++;
    return QStringLiteral("127.%1.%2.%3").arg(1 + n / 62500).arg(n / 250 % 250).arg(1 + n % 250);
}

ModelBox* ModelLan::at(const QString& ip) const
{
    const auto found = std::find_if(m_boxes.begin(), m_boxes.end(), [&ip](const auto& box) {
        return box->isOn && box->address == ip;
    });
    return found == m_boxes.end() ? nullptr : found->get();
}

void ModelLan::ask(const QString& ip, int limitMs, int ModelBoxHabits::*workMs,
                   std::function<QString(ModelBox&)> handle, Answered answered)
{
    const bool lose = isLost();
    const bool loseAnswer = isLost();
    m_time.in(wayMs, [this, ip, limitMs, workMs, lose, loseAnswer, handle = std::move(handle),
                      answered = std::move(answered)]() mutable {
        ModelBox* box = at(ip);
        if (!box || box->isDeaf || lose) {
            m_time.in(box ? limitMs : qMin(limitMs, m_absentMs),
                      [answered = std::move(answered)] { answered(QString()); });
            return;
        }
        const int work = box->habits.*workMs;
        const int life = box->life;
        const QString answer = handle(*box);
        if (answer.isNull() || work > limitMs || loseAnswer) {
            m_time.in(limitMs, [answered = std::move(answered)] { answered(QString()); });
            return;
        }
        m_time.in(work, [answered = std::move(answered), answer, box, life] {
            const bool heard = box->isOn && box->life == life && !box->isDeaf;
            answered(heard ? answer : QString());
        });
    });
}

void ModelLan::read(const QString& ip, const QString& parameter, Answered answered)
{
    trace(ip, QStringLiteral("read"), parameter);
    ask(
        ip, ReadLimitMs, &ModelBoxHabits::readMs,
        [this, parameter](ModelBox& box) {
            if (parameter == box.habits.unreadable)
                return QString();
            if (box.isChanging && box.habits.answersErrors)
                return QStringLiteral("HTTP 503");
            if (parameter == QLatin1String("eParam_FirmVersion") && box.tellsPackage)
                return told(parameter, box.packageVersion);
            const bool isDenied = parameter == box.habits.denied && m_time.now() < box.deniesUntil;
            const auto value = box.settings.constFind(parameter);
            if (isDenied || parameter == box.habits.missing || value == box.settings.constEnd())
                return QString(QStringLiteral("{\"param_name\":") % quoted(parameter) %
                               QStringLiteral(",\"status\":\"failed\"}"));
            return told(parameter, *value);
        },
        [this, ip, parameter, answered = std::move(answered)](const QString& answer) {
            ModelBox* box = answer.isEmpty() ? nullptr : at(ip);
            if (box)
                box->untold.remove(parameter);
            answered(answer);
        });
}

void ModelLan::write(const QString& ip, const QString& parameter, const QString& value,
                     Answered answered)
{
    trace(ip, QStringLiteral("write"), parameter, value);
    ask(
        ip, WriteLimitMs, &ModelBoxHabits::writeMs,
        [this, parameter, value](ModelBox& box) {
            if (box.isChanging && m_time.now() - box.orderedAt < AllowanceMs)
                box.violations << QStringLiteral("written in its change: ") + parameter;
            acted(box, parameter);
            noteTwins(box, parameter);
            if (parameter == box.habits.unwritable)
                return QStringLiteral("{\"status\":\"set failed\"}");
            box.untold << parameter;
            if (box.settings.value(parameter) != value) {
                box.unapplied = true;
                box.settings[parameter] =
                    parameter == box.habits.misunderstood ? QStringLiteral("?") : value;
            }
            return QStringLiteral("{\"status\":\"set success\"}");
        },
        std::move(answered));
}

void ModelLan::upload(const QString& ip, const QString& version, const QString& md5,
                      Answered answered)
{
    trace(ip, QStringLiteral("upload"));
    const int number = ++m_uploads[ip];
    const bool loseAnswer = isLost();
    ModelBox* box = at(ip);
    if (!box || box->isDeaf) {
        m_time.in(m_absentMs, [answered] { answered(QString()); });
        return;
    }
    acted(*box, QStringLiteral("upload"));
    const int life = box->life;
    m_time.in(box->habits.uploadMs, [=] {
        if (m_uploads.value(ip) != number || !box->isOn || box->life != life) {
            answered(QString());
            return;
        }
        if (!box->habits.takesUpload || box->habits.uploadFailures > 0) {
            --box->habits.uploadFailures;
            answered(failure());
            return;
        }
        box->hasPackage = true;
        box->isDamaged = box->habits.damagedUploads-- > 0;
        box->wholePackages += box->isDamaged ? 0 : 1;
        box->packageVersion = version;
        const QString arrived = box->isDamaged ? QStringLiteral("another") : md5;
        answered(
            loseAnswer
                ? QString()
                : QStringLiteral("{\"status\":\"success\",\"file_md5\":%1}").arg(quoted(arrived)));
    });
}

void ModelLan::abandonUpload(const QString& ip)
{
    ++m_uploads[ip];
}

void ModelLan::activate(const QString& ip, Answered answered)
{
    trace(ip, QStringLiteral("activate"));
    const bool lose = isLost();
    const bool loseAnswer = isLost();
    m_time.in(wayMs, [=] {
        ModelBox* box = at(ip);
        if (!box || box->isDeaf || lose) {
            m_time.in(m_absentMs, [answered] { answered(QString()); });
            return;
        }
        acted(*box, QStringLiteral("activate"));
        if (box->isChanging)
            box->violations << QStringLiteral("activated twice");
        // A twin may have had it.
        const bool isKnown = std::any_of(m_boxes.begin(), m_boxes.end(), [box](const auto& other) {
            return other->mac == box->mac && other->wholePackages > 0;
        });
        if (!isKnown || (box->hasPackage && box->isDamaged))
            box->violations << QStringLiteral("activated without a whole package");
        using Habits = ModelBoxHabits;
        if (!box->hasPackage || box->habits.change == Habits::Change::Refuses) {
            m_time.in(box->habits.writeMs, [answered] { answered(failure()); });
            return;
        }
        box->orderedAt = m_time.now();
        const int life = box->life;
        switch (loseAnswer ? Habits::Answer::HangsUp : box->habits.answer) {
        case Habits::Answer::AtOnce:
            m_time.in(box->habits.writeMs, [answered] { answered(success()); });
            break;
        case Habits::Answer::Late:
            m_time.in(box->habits.changeMs * 3 / 4, [answered, box, life] {
                answered(box->isOn && box->life == life ? success() : QString());
            });
            break;
        case Habits::Answer::Never:
            break;
        case Habits::Answer::HangsUp:
            m_time.in(1, [answered] { answered(QString()); });
            break;
        }
        if (box->habits.change != Habits::Change::NeverBegins)
            changeOver(*box);
    });
}

/// It keeps answering, goes away, and comes back with what its firmware made of it.
void ModelLan::changeOver(ModelBox& box)
{
    box.isChanging = true;
    const int life = box.life;
    if (box.habits.earlyMs > 0 && box.habits.change == ModelBoxHabits::Change::Normal)
        m_time.in(qMax(0, box.habits.changeMs - box.habits.earlyMs),
                  [&box, life] { box.tellsPackage = box.isChanging && box.life == life; });
    m_time.in(box.habits.changeMs, [this, &box, life] {
        if (box.life != life)
            return;
        using Change = ModelBoxHabits::Change;
        goAway(box, box.habits.change == Change::StaysAway ? -1 : box.habits.awayMs, [this, &box] {
            QString& version = box.settings[QStringLiteral("eParam_FirmVersion")];
            if (box.habits.change == Change::Normal) {
                version = box.packageVersion;
                box.changes.push_back({m_time.now(), version});
            } else if (box.habits.change == Change::OlderVersion) {
                version = QStringLiteral("1.1.0.100");
            }
            for (const QString& name : box.habits.resets)
                box.settings[name] =
                    factorySettings(99, QStringLiteral("127.254.0.99")).value(name);
        });
    });
}

void ModelLan::restart(const QString& ip, Answered answered)
{
    trace(ip, QStringLiteral("restart"));
    const bool lose = isLost();
    const bool loseAnswer = isLost();
    m_time.in(wayMs, [=] {
        ModelBox* box = at(ip);
        if (!box || box->isDeaf || lose) {
            m_time.in(m_absentMs, [answered] { answered(QString()); });
            return;
        }
        acted(*box, QStringLiteral("restart"));
        if (box->isChanging && m_time.now() - box->orderedAt < AllowanceMs)
            box->violations << QStringLiteral("restarted in its change");
        answered(loseAnswer ? QString() : success());
        goAway(*box, box->habits.diesOfRestart ? -1 : box->habits.awayMs, {});
    });
}

void ModelLan::acted(const ModelBox& box, const QString& act) const
{
    if (m_acted)
        m_acted(box, act);
}

bool ModelLan::tellsMac(const ModelBox& box, qint64 since) const
{
    const QLatin1String mac("eParam_MACAddress");
    const bool isBusy = box.isChanging && box.habits.answersErrors;
    const bool isDenying = box.habits.denied == mac && box.deniesUntil > since;
    return box.habits.missing != mac && !isBusy && !isDenying;
}

/// A twin could be found if it answers since before the settings began to be written. Nobody can
/// find out that there are two where one of them was never there when the other was.
void ModelLan::noteTwins(ModelBox& box, const QString& parameter)
{
    constexpr qint64 longestWriteBackMs = 120000;
    for (const auto& other : m_boxes) {
        if (other.get() == &box || other->mac != box.mac)
            continue;
        const bool isFound = other->isOn && !other->isDeaf &&
                             other->reachableSince < m_time.now() - longestWriteBackMs &&
                             tellsMac(*other, m_time.now() - longestWriteBackMs);
        if (!isFound)
            box.writtenApart = other->writtenApart = true;
        // To switch it on harms nobody.
        else if (parameter != QLatin1String("eParam_DHCP"))
            box.violations << QStringLiteral("written beside its twin: ") + parameter;
    }
}

void ModelLan::swapAddresses(ModelBox& a, ModelBox& b)
{
    if (&a == &b || !a.isOn || !b.isOn)
        return;
    std::swap(a.address, b.address);
    a.reachableSince = b.reachableSince = m_time.now();
    trace(a.address, a.mac, QStringLiteral("swaps with"), b.address, b.mac);
    for (const ModelBox* box : {&a, &b}) {
        if (m_appeared)
            m_appeared(*box);
    }
}

int ModelLan::turnOff(ModelBox& box)
{
    box.isOn = false;
    box.isChanging = box.tellsPackage = false;
    box.hasPackage = false;
    return ++box.life;
}

/// `awayMs` below 0: for good. `before` happens when it is off.
void ModelLan::goAway(ModelBox& box, int awayMs, const std::function<void()>& before)
{
    trace(box.address, box.mac, QStringLiteral("goes away"));
    const int life = turnOff(box);
    if (before)
        before();
    if (awayMs < 0)
        return;
    m_time.in(awayMs, [this, &box, life] {
        if (box.life != life)
            return;
        const bool fixed = box.settings.value(QStringLiteral("eParam_DHCP")) == QLatin1String("0");
        const QString own = box.settings.value(QStringLiteral("eParam_IPAddress"));
        comeBack(box, fixed ? own : box.habits.movesOnRestart ? freshAddress() : QString());
    });
}

void ModelLan::powerCycle(ModelBox& box, int awayMs, const QString& address)
{
    trace(box.address, box.mac, QStringLiteral("loses its power"));
    const int life = turnOff(box);
    m_time.in(awayMs, [this, &box, life, address] {
        if (box.life == life)
            comeBack(box, address);
    });
}

void ModelLan::comeBack(ModelBox& box, const QString& address)
{
    // An address that is taken stays so: it keeps the one it had, or gets another.
    QString wanted = address.isEmpty() ? box.address : address;
    if (at(wanted))
        wanted = freshAddress();
    box.address = wanted;
    box.unapplied = false;
    box.isOn = true;
    box.reachableSince = m_time.now();
    box.deniesUntil = m_time.now() + box.habits.denyMs;
    trace(wanted, box.mac, QStringLiteral("is there"));
    if (m_appeared)
        m_appeared(box);
}

/// The same in each run: it hangs on the moment and on how much was asked before.
bool ModelLan::isLost()
{
    const quint32 mixed = (quint32(m_time.now()) + ++m_asked * 7919u) * 2654435761u;
    return int((mixed >> 16) % 100) < m_lossPercent;
}

void ModelLan::setDeaf(ModelBox& box, int ms)
{
    trace(box.address, box.mac, QStringLiteral("cannot be reached"));
    box.isDeaf = true;
    m_time.in(ms, [this, &box] {
        box.isDeaf = false;
        box.reachableSince = m_time.now();
    });
}

} // namespace sim
