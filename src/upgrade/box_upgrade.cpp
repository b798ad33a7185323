// SPDX-License-Identifier: MIT
// The life of a box under upgrade, and who it is; box_upgrade_change.cpp, box_upgrade_return.cpp
// and box_upgrade_restore.cpp have the rest.
#include "upgrade/box_upgrade.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "upgrade/box_answer.h"

namespace
{

using Stage = UpgradeRow::Stage;
using Settings = UpgradeRow::Settings;

constexpr int identifyTicks = 120;
constexpr int longestPauseTicks = 8;
constexpr int twinQuestions = 3;
constexpr int versionTries = 3;
constexpr int denialTicks = 15;

} // namespace

BoxUpgrade::BoxUpgrade(UpgradeSession& session, int row, BoxLink& link, const UpgradeClock& clock,
                       UpgradeHost& host)
    : m_session(session)
    , m_index(row)
    , m_link(session, row, link, clock)
    , m_clock(clock)
    , m_host(host)
    , m_reader(m_link, clock)
    , m_writer(m_link)
{
    // An earlier run of the program may have begun it; since then nobody sets the clock.
    m_spentBefore = qMax<qint64>(0, session.rows[row].started.msecsTo(clock.date()));
    m_begunAt = clock.ms();
    // One that only waits for its settings.
    if (session.rows[row].settings == Settings::Waiting)
        m_link.expect();
}

BoxUpgrade::~BoxUpgrade() = default;

void BoxUpgrade::start(const FirmwarePackage& package, bool keepSettings)
{
    m_package = package;
    m_keep = keepSettings;
    m_inBatch = true;
    row().expected = package.version;
    identify();
}

void BoxUpgrade::leaveOut(const QString& reason)
{
    m_inBatch = true;
    leaveAlone(reason);
}

void BoxUpgrade::enter(Step step)
{
    m_step = step;
    m_listener.forget();
    m_next = nullptr;
    m_failures = 0;
    m_limit = 0;
    m_host.changed(*this);
}

void BoxUpgrade::later(void (BoxUpgrade::*what)(), qint64 ms)
{
    m_next = what;
    m_due = m_clock.ms() + ms;
}

/// After a question without an answer: the pauses grow.
void BoxUpgrade::askAgain(void (BoxUpgrade::*what)())
{
    const int pause = qMin(1 << qMin(m_failures++, longestPauseTicks), longestPauseTicks);
    later(what, ticks(pause));
}

void BoxUpgrade::tick()
{
    if (!m_link.breach().isEmpty() && isOwner()) {
        stopSafely();
        return;
    }
    m_reader.tick();
    const qint64 now = m_clock.ms();
    if (m_step == Step::Identifying && now >= m_limit && m_next) {
        leaveAlone(tr("设备没有回应，未升级"));
        return;
    }
    watchTime(now);
    lookOut(now);
    if (!m_next || now < m_due)
        return;
    const auto next = m_next;
    m_next = nullptr;
    (this->*next)();
}

void BoxUpgrade::countDown()
{
    if (!m_inBatch || m_succeeded)
        return;
    if (m_secondsLeft < 1)
        m_timedOut = true;
    else
        --m_secondsLeft;
    m_host.changed(*this);
}

void BoxUpgrade::endBatch()
{
    if (!m_inBatch)
        return;
    m_inBatch = false;
    if (isOwner() && !m_ordered && m_step <= Step::Activating) {
        m_link.abandonUpload(row().address);
        giveUpUpload(m_problem);
    } else {
        m_host.changed(*this);
    }
}

void BoxUpgrade::tell(const QString& line)
{
    note(line);
    m_host.tell(*this, line);
}

void BoxUpgrade::note(const QString& text)
{
    row().note = text;
    m_host.changed(*this);
}

/// Nothing has been ordered, and nothing will be: why not is told.
void BoxUpgrade::leaveAlone(const QString& reason)
{
    m_timedOut = true;
    tell(reason);
    giveUpUpload(reason);
}

void BoxUpgrade::giveUpUpload(const QString& reason)
{
    m_reader.stop();
    m_listener.forget();
    row().stage = Stage::UploadFailed;
    if (!reason.isEmpty())
        row().note = reason;
    spendTime();
    // Without the new firmware only the switch of the address is to be undone.
    if (row().settings == Settings::Waiting && !row().dhcpForced && !m_tookOver) {
        row().settings = Settings::Unchanged;
        m_host.writeBackEnded(*this);
    }
    if (row().settings == Settings::Waiting)
        awaitBox();
    else
        end();
}

void BoxUpgrade::end()
{
    spendTime();
    row().settled = true;
    if (row().settings != Settings::Waiting)
        row().saved.clear();
    enter(Step::Ended);
}

/// Something that may never happen was about to: nothing more is sent. What it had waits until the
/// next start of the program asks whether it is wanted.
void BoxUpgrade::stopSafely()
{
    m_reader.stop();
    m_writer.stop();
    m_orders.forget();
    m_round.forget();
    m_link.abandonUpload(row().address);
    m_ordered = false;
    m_timedOut = !m_succeeded;
    if (row().settings == Settings::Restored || row().settings == Settings::Unverified)
        row().aftermath = restartDoubt();
    row().stopped = m_link.breach();
    m_host.tell(*this, tr("内部检查未通过（%1），已停止对此设备的操作").arg(row().stopped));
    if (row().stage < Stage::Activated)
        row().stage = Stage::UploadFailed;
    if (row().settings != Settings::Waiting) {
        end();
        return;
    }
    spendTime();
    row().settled = true;
    m_held = true;
    enter(Step::Missing);
}

/// What is known of the box goes to disk; `then` is told whether it did.
void BoxUpgrade::keep(std::function<void(bool)> then)
{
    m_host.keep(*this, [this, asked = row(), then = std::move(then)](bool kept) {
        if (kept)
            m_link.kept(asked);
        then(kept);
    });
}

void BoxUpgrade::spendTime()
{
    if (row().durationMs == 0)
        row().durationMs = qMax<qint64>(1, m_spentBefore + m_clock.ms() - m_begunAt);
}

void BoxUpgrade::confirm(void (BoxUpgrade::*same)())
{
    m_confirmed = same;
    confirmNow();
}

void BoxUpgrade::confirmNow()
{
    if (row().ambiguous && m_keep) {
        leaveAlone(tr("网络中有两台设备的MAC地址相同，无法保留设置，未升级"));
        return;
    }
    m_link.read(row().address, BoxProtocol::MACAddress,
                m_listener.hear([this](const QString& answer) {
                    const QString mac = BoxAnswer::mac(answer);
                    if (BoxAnswer::isFrom(answer, row().mac)) {
                        m_failures = 0;
                        (this->*m_confirmed)();
                    } else if (!mac.isEmpty()) {
                        anotherBox(mac);
                    } else {
                        askAgain(&BoxUpgrade::confirmNow);
                    }
                }));
}

void BoxUpgrade::anotherBox(const QString& mac)
{
    m_host.identified(row().address, mac);
    // One that had none to tell may be the same, or not.
    leaveAlone((row().mac.isEmpty() ? tr("此地址上的设备现在才告知MAC地址（%1），未升级，请重试")
                                    : tr("此地址上现在是另一台设备（%1），未升级"))
                   .arg(mac));
}

// --- who it is ---------------------------------------------------------------------------------

void BoxUpgrade::identify()
{
    enter(Step::Identifying);
    m_limit = m_clock.ms() + ticks(identifyTicks);
    askIdentity();
}

void BoxUpgrade::askIdentity()
{
    m_link.read(row().address, BoxProtocol::MACAddress,
                m_listener.hear([this](const QString& answer) { takeIdentity(answer); }));
}

void BoxUpgrade::takeIdentity(const QString& answer)
{
    const HttpResult told = HttpResult::fromBody(answer);
    if (told.parameterName != BoxProtocol::MACAddress) {
        askAgain(&BoxUpgrade::askIdentity);
        return;
    }
    const QString mac = BoxAnswer::mac(answer);
    if (!row().mac.isEmpty() && !BoxProtocol::isSameMac(mac, row().mac)) {
        if (mac.isEmpty())
            askAgain(&BoxUpgrade::askIdentity);
        else
            anotherBox(mac);
        return;
    }
    if (mac.isEmpty() && !m_deniesMac) {
        // Some say so while they start.
        m_deniesMac = true;
        // In time for a second answer.
        const qint64 left = m_limit - m_clock.ms() - ticks(2);
        later(&BoxUpgrade::askIdentity, qBound<qint64>(0, left, ticks(denialTicks)));
        return;
    }
    m_identified = true;
    if (!mac.isEmpty()) {
        row().mac = mac;
        m_host.identified(row().address, mac);
    }
    if (const BoxUpgrade* owner = m_host.ownerBeside(*this)) {
        leaveToOwner(*owner);
        return;
    }
    if (mac.isEmpty()) {
        // It has none to tell: nothing can be proved of it, and nothing kept.
        askVersionBefore(&BoxUpgrade::identified);
        return;
    }
    m_tookOver = m_host.takeOver(*this);
    if (m_tookOver)
        m_link.expect();
    askTwins(m_host.otherAddresses(mac, row().address), [this](bool twins) {
        row().ambiguous = row().ambiguous || twins;
        askVersionBefore(&BoxUpgrade::identified);
    });
}

/// The same box in another row, or another box with its MAC address: only who still answers where
/// the upgrade has its box tells which.
void BoxUpgrade::leaveToOwner(const BoxUpgrade& owner)
{
    const QString ip = owner.row().address;
    const bool elsewhere = ip != row().address && BoxProtocol::isIpv4Address(ip);
    askTwins(elsewhere ? QStringList{ip} : QStringList(), [this](bool twins) {
        BoxUpgrade* other = m_host.ownerBeside(*this);
        if (twins) {
            row().ambiguous = true;
            if (other)
                other->row().ambiguous = true;
        } else if (other) {
            other->heardAt(row().address);
        }
        leaveAlone(twins ? tr("此MAC地址的另一台设备正在升级，未升级") : ownedText());
    });
}

QString BoxUpgrade::ownedText()
{
    return tr("设备正在升级固件或恢复设置，未再次升级");
}

/// A box that moved leaves a row behind: only what answers counts. One lost packet is no silence.
void BoxUpgrade::askTwins(const QStringList& addresses, std::function<void(bool)> then)
{
    QStringList questions;
    for (const QString& ip : addresses) {
        for (int n = 0; n < twinQuestions; ++n)
            questions << ip;
    }
    askNextTwin(questions, std::move(then));
}

void BoxUpgrade::askNextTwin(QStringList questions, std::function<void(bool)> then)
{
    if (questions.isEmpty()) {
        then(false);
        return;
    }
    const QString ip = questions.takeFirst();
    m_link.read(ip, BoxProtocol::MACAddress,
                m_listener.hear([this, ip, questions, then](const QString& answer) {
                    if (BoxAnswer::isMac(answer, row().mac)) {
                        then(true);
                        return;
                    }
                    QStringList rest = questions;
                    // An error says nothing of who it is.
                    if (!HttpResult::fromBody(answer).parameterName.isEmpty())
                        rest.removeAll(ip);
                    askNextTwin(rest, then);
                }));
}

void BoxUpgrade::askVersionBefore(void (BoxUpgrade::*then)())
{
    m_versionAsked = then;
    m_versionTries = 0;
    askVersionNow();
}

void BoxUpgrade::askVersionNow()
{
    m_link.read(row().address, BoxProtocol::FirmVersion,
                m_listener.hear([this](const QString& answer) {
                    const QString version = BoxAnswer::version(answer);
                    if (version.isEmpty() && ++m_versionTries < versionTries) {
                        askAgain(&BoxUpgrade::askVersionNow);
                        return;
                    }
                    m_version = version;
                    // Another box may have told it.
                    if (version.isEmpty())
                        (this->*m_versionAsked)();
                    else
                        confirm(&BoxUpgrade::takeVersionBefore);
                }));
}

void BoxUpgrade::takeVersionBefore()
{
    row().versionBefore = m_version;
    m_host.versionTold(row().address, m_version);
    (this->*m_versionAsked)();
}

void BoxUpgrade::identified()
{
    if (m_tookOver) {
        // What the box has by now is what the upgrade before left of them.
        if (row().ambiguous)
            leaveAlone(tr("网络中有两台设备的MAC地址相同，未升级"));
        else if (m_keep)
            switchDhcp();
        else
            beginUploading();
    } else if (!m_keep) {
        beginUploading();
    } else if (row().ambiguous || row().mac.isEmpty()) {
        leaveAlone(row().ambiguous ? tr("网络中有两台设备的MAC地址相同，无法保留设置，未升级")
                                   : tr("设备没有MAC地址，无法保留设置，未升级"));
    } else {
        readSettings();
    }
}
