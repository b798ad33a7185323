// SPDX-License-Identifier: MIT
// What a box gets back after its change, and its restart with that.
#include "upgrade/box_upgrade.h"

#include "common/box_protocol.h"
#include "upgrade/box_answer.h"

namespace
{

using Settings = UpgradeRow::Settings;

constexpr int mostLost = 10;
constexpr int mostRestartOrders = 3;

} // namespace

// --- the operator's word -----------------------------------------------------------------------

void BoxUpgrade::release()
{
    // Its guard lets nothing through any more.
    if (!m_link.breach().isEmpty())
        return;
    m_held = false;
    if (m_step == Step::Missing && !m_handingOver)
        awaitBox();
}

void BoxUpgrade::awaitBox()
{
    m_ordered = false;
    row().settled = false;
    enter(Step::Away);
    watch();
}

void BoxUpgrade::dropSettings()
{
    // Half of them written is worse than all.
    const bool begun = m_step == Step::WritingBack || m_step == Step::Restarting;
    // The word is about settings of an earlier upgrade; whoever has begun one that keeps them since
    // wants them.
    if (row().settings != Settings::Waiting || begun || m_keep)
        return;
    row().settings = Settings::Dropped;
    m_held = false;
    if (m_step == Step::Missing)
        end();
    else
        m_host.changed(*this);
}

void BoxUpgrade::handOver(UpgradeRow& to)
{
    // From now on only the later one writes.
    m_handingOver = true;
    to.settings = Settings::Waiting;
    to.saved = row().saved;
    to.dhcpForced = row().dhcpForced;
    to.absent = row().absent;
}

void BoxUpgrade::endHandedOver()
{
    if (row().settings != Settings::Waiting)
        return;
    row().settings = Settings::HandedOver;
    end();
}

// --- writing ---------------------------------------------------------------------------------

void BoxUpgrade::writeBack()
{
    if (row().settings != Settings::Waiting) {
        end();
        return;
    }
    if (m_held) {
        row().settled = true;
        enter(Step::Missing);
        return;
    }
    enter(Step::WritingBack);
    askTwins(m_host.otherAddresses(row().mac, row().address),
             [this](bool twins) { beginWriting(twins); });
}

void BoxUpgrade::beginWriting(bool twins)
{
    row().ambiguous = row().ambiguous || twins;
    // Nothing written is nothing restored.
    if (row().ambiguous || row().saved.isEmpty()) {
        row().settings = row().ambiguous ? Settings::Ambiguous : Settings::NotSaved;
        m_host.writeBackEnded(*this);
        end();
        return;
    }
    m_host.writeBackBegins(*this, row().saved);
    m_writer.start(row().address, row().mac, row().saved,
                   [this](const SettingsWriter::Outcome& outcome) { takeOutcome(outcome); });
}

void BoxUpgrade::takeOutcome(const SettingsWriter::Outcome& outcome)
{
    if (outcome.lost) {
        if (++m_lost < mostLost)
            awaitBox();
        else
            giveUpWaiting();
        return;
    }
    const QStringList failed = outcome.refused + outcome.different;
    if (failed.isEmpty()) {
        row().settings = outcome.unread.isEmpty() ? Settings::Restored : Settings::Unverified;
        row().lastTry = false;
        m_host.writeBackEnded(*this);
        keep([this](bool) { confirmRestart(); });
    } else if (row().lastTry) {
        row().settings = Settings::SomeFailed;
        // What was not to be read again may have failed as well.
        const QStringList doubtful = failed + outcome.unread;
        for (const QString& name : doubtful)
            row().failedSettings << name + QLatin1Char('=') + row().saved.value(name).toString();
        m_host.writeBackEnded(*this);
        end();
    } else {
        row().lastTry = true;
        m_host.lastTryFollows(*this);
        keep([this](bool) { confirmRestart(); });
    }
}

void BoxUpgrade::confirmRestart()
{
    if (m_step != Step::WritingBack)
        return;
    m_restartOrders = 0;
    orderRestart();
}

/// Again when nothing at all came of it: what was written counts after a restart only.
void BoxUpgrade::orderRestart()
{
    ++m_restartOrders;
    m_restartAnswered = false;
    m_nextRound = m_clock.ms() + ticks(RestartTicks);
    m_link.read(row().address, BoxProtocol::MACAddress,
                m_listener.hear([this](const QString& answer) {
                    m_restartSent = BoxAnswer::isMac(answer, row().mac);
                    if (m_restartSent)
                        m_link.order(row().address, BoxOrder::Restart,
                                     m_orders.hear([this](const QString& reply) {
                                         m_restartAnswered = m_restartAnswered || !reply.isEmpty();
                                     }));
                    beginRestart();
                }));
}

void BoxUpgrade::beginRestart()
{
    enter(Step::Restarting);
    m_wasAway = false;
    m_hasMoved = false;
    // With its own address it comes back there.
    m_candidates << row().addressBefore;
    const QString own = row().saved.value(BoxProtocol::IPAddress).toString();
    if (BoxProtocol::isIpv4Address(own))
        m_candidates << own;
    watch();
}

void BoxUpgrade::takeRestart()
{
    // One that could not be asked who it is was told nothing, and now it has answered.
    const bool isHeard = m_restartSent && (m_wasAway || m_restartAnswered || !isOutOfTime());
    if (!isHeard && m_restartOrders < mostRestartOrders)
        orderRestart();
    else if (m_wasAway || isOutOfTime())
        restarted();
}

void BoxUpgrade::restarted()
{
    if (row().settings == Settings::Waiting) {
        writeBack();
        return;
    }
    if (!m_restartAnswered && !wasSurelyAway())
        row().aftermath = restartDoubt();
    end();
}

QString BoxUpgrade::restartDoubt()
{
    return tr("设置已写回，但不能确定设备已重启");
}

/// The silence that has just ended was no matter of a busy network: where the order was not
/// answered it may not have arrived.
bool BoxUpgrade::wasSurelyAway() const
{
    return m_wasAway && (m_hasMoved || m_clock.ms() - m_missedSince >= ticks(SureAbsenceTicks));
}
