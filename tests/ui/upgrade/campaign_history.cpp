// SPDX-License-Identifier: MIT
#include "tests/ui/upgrade/campaign_history.h"

#include "common/box_protocol.h"
#include "simulator/habits.h"
#include "tests/support/files.h"
#include "upgrade/box_upgrade.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

using Settings = UpgradeRow::Settings;
using Verdict = UpgradeRow::Verdict;

namespace
{

constexpr int longestMs = 480000;
constexpr int quietMs = 10000;
constexpr int slowestOrderMs = 5000;

/// How long it lasts here. How long the program waits for an answer is not of the boxes' clock; and
/// a swap is slower than the slowest command, as boxes are: between the question who is there and
/// what is sent then, nobody starts.
int realMs(const UpgradeStory::Event& event)
{
    using Event = UpgradeStory::Event;
    const bool isReal = event.what == Event::Deaf || event.what == Event::Swap;
    return isReal ? event.lasts : event.lasts / CampaignHistory::Pace;
}

QString ip(int host)
{
    return TEST_BLOCK "." + QString::number(host);
}

QStringList cellsOf(const QString& line)
{
    static const QRegularExpression cell("\"((?:[^\"]|\"\")*)\"");
    QStringList cells;
    auto found = cell.globalMatch(line);
    while (found.hasNext())
        cells << found.next().captured(1).replace("\"\"", "\"");
    return cells;
}

Verdict verdictOf(const QString& text)
{
    for (int n = int(Verdict::UnderWay); n <= int(Verdict::Interrupted); ++n) {
        if (UpgradeText::verdict(Verdict(n)) == text)
            return Verdict(n);
    }
    qFatal("no verdict: %s", qPrintable(text));
}

Settings settingsOf(const QString& text)
{
    if (text.endsWith("项失败"))
        return Settings::SomeFailed;
    for (int n = int(Settings::NotKept); n <= int(Settings::Ambiguous); ++n) {
        UpgradeRow row;
        row.settings = Settings(n);
        for (const bool other : {false, true}) {
            row.settled = row.dhcpForced = other;
            if (UpgradeText::cells({}, row, {}).at(6) == text)
                return row.settings;
        }
    }
    qFatal("no word for settings: %s", qPrintable(text));
}

UpgradeChecker::Told toldBy(const QStringList& cells)
{
    UpgradeChecker::Told told;
    told.mac = cells.at(2);
    told.verdict = verdictOf(cells.at(5));
    told.settings = settingsOf(cells.at(6));
    told.settled = told.verdict != Verdict::UnderWay && cells.at(6) != "待恢复";
    told.doubtsRestart = cells.at(8).contains("重启") || cells.at(8).contains("未再回应");
    told.from = QDateTime::fromString(cells.at(0), "yyyy-MM-dd HH:mm:ss").toMSecsSinceEpoch();
    told.expected = UpgradeStory::packageVersion();
    static const QRegularExpression setting("eParam_\\w+=");
    auto named = setting.globalMatch(cells.at(8));
    while (named.hasNext())
        told.failedSettings << named.next().captured();
    return told;
}

} // namespace

CampaignHistory::CampaignHistory(quint32 seed)
    : m_story(seed), m_lan(m_folder.path() + "/run"), m_nextHost(Boxes + 1)
{
    m_package =
        writePackage(m_folder.path() + "/KORA_" + UpgradeStory::packageVersion() + ".dat", 100000);
    for (int host = 1; host <= Boxes; ++host)
        addBox(host);
}

void CampaignHistory::addBox(int host)
{
    sim::BoxSetup setup;
    setup.address = ip(host);
    sim::VirtualBox* box = m_lan.add(setup);
    if (host > 1 && m_story.chance(1)) {
        m_twins << m_boxes[0].box->parameter("eParam_MACAddress");
        box->setParameter("eParam_MACAddress", *m_twins.begin());
    }
    const QString mac = box->parameter("eParam_MACAddress");
    box->setParameter("eParam_NDIName", "name of " + mac);
    box->setParameter("eParam_NTPServer", "ntp of " + mac);
    box->setParameter("eParam_DHCP", m_story.chance(50) ? "0" : "1");
    sim::ModelBoxHabits habits = m_story.habits();
    habits.diesOfRestart = false; // not among what a virtual box does
    sim::giveHabits(*box, habits, Pace);
    m_checker.addBox(mac, box->parameters(), habits);
    m_boxes.push_back({box, habits});
    QObject::connect(box, &sim::VirtualBox::reachableChanged, box,
                     [this, box, mac](bool reachable) {
                         note(mac + (reachable ? " is there: " : " is gone: ") + box->address());
                     });
    if (habits.movesOnRestart)
        QObject::connect(box, &sim::VirtualBox::reachableChanged, box, [this, box](bool reachable) {
            if (!reachable)
                box->setLease(freshAddress());
        });
    if (!box->plugIn())
        qFatal("no box at %s: %s", qPrintable(ip(host)), qPrintable(box->errorString()));
}

/// One that no box has, or will have again.
QString CampaignHistory::freshAddress()
{
    do
        m_nextHost = m_nextHost < 249 ? m_nextHost + 1 : Boxes + 1;
    while (m_lan.find(ip(m_nextHost)));
    return ip(m_nextHost);
}

void CampaignHistory::plan(const QVector<UpgradeStory::Event>& events)
{
    for (const UpgradeStory::Event& event : events) {
        m_lastEvent = qMax(m_lastEvent, event.at / Pace + realMs(event));
        QTimer::singleShot(int(event.at / Pace), &m_lan, [this, event] { happen(event); });
    }
}

void CampaignHistory::note(const QString& line)
{
    m_notes << QString::number(QDateTime::currentMSecsSinceEpoch()) + ' ' + line;
}

QStringList CampaignHistory::story(const QStringList& problems) const
{
    QStringList lines = m_notes;
    for (const Box& box : m_boxes) {
        const QString mac = box.box->parameter("eParam_MACAddress");
        if (problems.filter(mac).isEmpty())
            continue;
        for (const sim::Fault& fault : box.box->faults())
            lines << "0 " + mac + ' ' + sim::faultLine(fault);
        for (const sim::BoxRequest& request : box.box->requests())
            lines << QString("%1 %2 %3")
                         .arg(request.time)
                         .arg(mac, QString(request.query + request.body));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

void CampaignHistory::happen(const UpgradeStory::Event& event)
{
    static const char* const names[] = {"deaf",    "power cut", "swap",           "elsewhere",
                                        "written", "full disk", "end of program", "batch"};
    note(QString("%1 for %2 of box %3").arg(names[event.what]).arg(event.lasts).arg(event.box + 1));
    using Event = UpgradeStory::Event;
    sim::VirtualBox& box = *m_boxes[size_t(event.box)].box;
    sim::VirtualBox& next = *m_boxes[size_t(event.box + 1) % m_boxes.size()].box;
    const int ms = realMs(event);
    switch (event.what) {
    case Event::Deaf:
        setDeaf(box, ms);
        break;
    case Event::PowerCut:
        powerCycle(box, ms);
        break;
    case Event::Swap: {
        const QString address = box.address();
        box.setLease(next.address());
        next.setLease(address);
        powerCycle(box, ms);
        powerCycle(next, ms);
        break;
    }
    case Event::Elsewhere:
        box.setParameter("eParam_FirmVersion", UpgradeStory::versionFromElsewhere());
        powerCycle(box, ms);
        break;
    case Event::Written: {
        QString& value = m_written[&box][event.name];
        value = event.value.isEmpty() ? freshAddress() : event.value;
        box.setParameter(event.name, value);
        break;
    }
    case Event::FullDisk:
        setDiskFull(true);
        QTimer::singleShot(ms, &m_lan, [this] { setDiskFull(false); });
        break;
    case Event::EndProgram:
        endProgram();
        QTimer::singleShot(ms, &m_lan, [this] { startProgram(); });
        break;
    case Event::Batch:
        command(event.keep ? "keep" : "plain");
        break;
    }
}

void CampaignHistory::powerCycle(sim::VirtualBox& box, int ms)
{
    box.unplug();
    QTimer::singleShot(ms, &box, [&box] { box.plugIn(); });
}

void CampaignHistory::setDeaf(sim::VirtualBox& box, int ms)
{
    box.addFault("silent");
    box.addFault("no-ping");
    QTimer::singleShot(ms, &box, [&box] {
        box.clearFault(sim::FaultKind::Silent);
        box.clearFault(sim::FaultKind::NoPing);
    });
}

/// Not a byte can be written any more by the program.
void CampaignHistory::setDiskFull(bool full)
{
    if (m_program.state() != QProcess::Running)
        return;
#ifdef Q_OS_UNIX // elsewhere nobody can take the room from a program alone
    const rlimit limit{full ? 0 : RLIM_INFINITY, RLIM_INFINITY};
    prlimit(pid_t(m_program.processId()), RLIMIT_FSIZE, &limit, nullptr);
#else
    Q_UNUSED(full)
#endif
}

void CampaignHistory::startProgram()
{
    if (m_program.state() != QProcess::NotRunning)
        return;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("APPDATA", m_folder.path());
    environment.insert(sim::VirtualLan::runVariable(), m_lan.runDir());
    m_program.setProcessEnvironment(environment);
    if (qEnvironmentVariableIsSet("TARN_TRACE"))
        m_program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    else
        m_program.setStandardErrorFile(QProcess::nullDevice());
    m_program.start(QCoreApplication::applicationFilePath(),
                    {"--as-program", QString::number(m_story.draw(1000000)), m_package});
    QVERIFY(m_program.waitForStarted());
    note("the program starts");
}

/// Killed, or now and then closed.
void CampaignHistory::endProgram()
{
    if (m_story.chance(70))
        m_program.kill();
    else
        command("close");
    QVERIFY(m_program.state() == QProcess::NotRunning || m_program.waitForFinished(10000));
}

void CampaignHistory::command(const char* words)
{
    if (m_program.state() != QProcess::Running)
        return;
    m_program.write(words);
    m_program.write("\n");
    m_program.waitForBytesWritten(1000);
}

QStringList CampaignHistory::run()
{
    startProgram();
    QByteArray said;
    const auto isReady = [&] {
        return (said += m_program.readAllStandardOutput()).contains("ready");
    };
    if (!QTest::qWaitFor(isReady, 30000))
        return {"the program does not find all boxes"};
    m_clock.start();
    command(m_story.chance(75) ? "keep" : "plain");
    for (int n = 0; n < Boxes / 5; ++n)
        plan(m_story.troubles(Boxes));
    plan(m_story.operation());
    const bool ended = waitForEnd();
    command("close");
    if (m_program.state() != QProcess::NotRunning && !m_program.waitForFinished(10000))
        return {"the program does not end"};
    const auto all = reports();
    for (const Report& report : all) {
        m_lives += report.rows.size();
        for (const QString& ending : report.endings)
            ++m_endings[ending];
        m_checker.addReport(
            report.name, report.rows,
            QFile::exists(m_folder.path() + "/Tarn Hub/batches/" + report.name + ".json"));
    }
    QVector<UpgradeChecker::Truth> truth;
    for (const Box& box : m_boxes)
        truth << truthOf(*box.box);
    QStringList problems = m_checker.judge(truth);
    if (!ended)
        problems << "a story has no end: " + openStories().join(", ");
    return problems;
}

/// True once nothing has been under way for a while.
bool CampaignHistory::waitForEnd()
{
    QElapsedTimer quiet;
    quiet.start();
    while (m_clock.elapsed() < longestMs) {
        QTest::qWait(500);
        if (!isQuiet())
            quiet.restart();
        if (quiet.elapsed() > quietMs)
            return true;
    }
    return false;
}

bool CampaignHistory::isQuiet() const
{
    if (m_clock.elapsed() < m_lastEvent + 1000 || m_program.state() != QProcess::Running)
        return false;
    const auto all = reports();
    return std::all_of(all.begin(), all.end(), [](const Report& report) {
        return std::all_of(report.rows.begin(), report.rows.end(),
                           [](const UpgradeChecker::Told& row) { return row.settled; });
    });
}

QStringList CampaignHistory::openStories() const
{
    QStringList open;
    const auto all = reports();
    for (const Report& report : all) {
        for (int n = 0; n < report.rows.size(); ++n) {
            if (!report.rows.at(n).settled)
                open << report.rows.at(n).mac + ' ' + report.endings.at(n);
        }
    }
    return open;
}

QVector<CampaignHistory::Report> CampaignHistory::reports() const
{
    const QDir folder(m_folder.path() + "/Tarn Hub/batches");
    QVector<Report> reports;
    for (const QString& name : folder.entryList({"*.csv"}, QDir::Files, QDir::Name)) {
        Report report{QFileInfo(name).completeBaseName(), {}, {}};
        for (const QString& line : linesOf(folder.filePath(name))) {
            const QStringList cells = cellsOf(line);
            if (cells.size() != UpgradeText::headers().size() || cells == UpgradeText::headers())
                continue;
            report.rows << toldBy(cells);
            report.endings << cells.mid(5, 2).join('|');
        }
        reports << report;
    }
    return reports;
}

UpgradeChecker::Truth CampaignHistory::truthOf(const sim::VirtualBox& box) const
{
    const sim::BoxActivity activity = box.activity();
    QStringList violations;
    for (const sim::BoxBreach& breach : activity.breaches) {
        // After the whole allowance nobody waits for a box any more; it begins with the order,
        // which takes its time to the box on a busy computer.
        if (breach.afterMs < BoxUpgrade::AllowanceTicks * TickMs - slowestOrderMs)
            violations << breach.what + ", in its change";
    }
    UpgradeChecker::Truth truth{box.parameter("eParam_MACAddress"),
                                box.address(),
                                box.isOn(),
                                activity.unapplied,
                                box.parameters(),
                                violations};
    for (const sim::BoxChange& change : activity.changes)
        truth.changes.push_back({change.at, change.version});
    truth.writtenElsewhere = m_written.value(&box);
    // Nobody looks here whether the other one could be found.
    truth.writtenApart = m_twins.contains(truth.mac);
    return truth;
}
