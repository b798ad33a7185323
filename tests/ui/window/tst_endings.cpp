// SPDX-License-Identifier: MIT
#include "device/part_file.h"
#include "tests/support/clips.h"
#include "tests/support/stopwatch.h"
#include "tests/support/table.h"
#include "tests/support/window_fixture.h"
#include "ui/recordings/list_widget.h"

#include <QProcess>
#include <QSocketNotifier>

#include <csignal>

namespace
{

/// Processes besides `program` with this text in their command line.
int processesWith(const QByteArray& text, qint64 program)
{
    int found = 0;
    for (const QString& id : QDir("/proc").entryList(QDir::Dirs)) {
        const bool isOther = id.toLongLong() > 0 && id.toLongLong() != program &&
                             id.toLongLong() != QCoreApplication::applicationPid();
        const QByteArray line = readFile("/proc/" + id + "/cmdline");
        found += isOther && line.contains(text) ? 1 : 0;
    }
    return found;
}

} // namespace

/// The program ends while it is at work, in every way but the operator's.
class tst_Endings : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void endsAndLosesNothing_data();
    void endsAndLosesNothing();
    void brokenSurroundings_data();
    void brokenSurroundings();

private:
    void start(const QString& work);
    bool isAtWork(const QString& work);
    QString folder(const QString& name) const { return appData() + "/" + name; }
    QByteArray journal() const
    {
        const QDir upgrades(dataFolder() + "batches");
        return readFile(upgrades.filePath(upgrades.entryList({"*.json"}).value(0, "none")));
    }

    Clips m_clips;
    sim::VirtualBox* m_box = nullptr;
    std::unique_ptr<QProcess> m_program;
    QByteArray m_said;
};

void tst_Endings::initTestCase()
{
    m_box = addBox(1);
    writePackage(folder("KORA_1.2.0.623.dat"), 100000);
    writeScript(folder("hanging-fping"), "trap '' TERM\nexec sleep 30.5\n");
}

void tst_Endings::start(const QString& work)
{
    m_said.clear();
    m_program = std::make_unique<QProcess>();
    m_program->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_program->start(QCoreApplication::applicationFilePath(),
                     {"--as-program", work, folder(QString())});
}

bool tst_Endings::isAtWork(const QString& work)
{
    if (work == "search")
        return processesWith("30.5", m_program->processId()) > 0;
    if (work == "download")
        return QFileInfo(folder("saved/long.mp4.part")).size() > 0;
    if (work == "upgrade")
        return journal().contains("\"Uploading\"");
    m_said += m_program->readAllStandardOutput();
    return m_said.contains(work.toUtf8());
}

void tst_Endings::endsAndLosesNothing_data()
{
    columns<QString, int>("work", "signal"); // 0: the display goes
    row("idle, closed by the session", "known", SIGTERM);
    row("idle, display gone", "known", 0);
    row("sweep that hangs", "search", SIGTERM);
    row("sweep that hangs, display gone", "search", 0);
    row("picture that hangs", "playing", SIGTERM);
    row("picture that hangs, terminal gone", "playing", SIGHUP);
    row("download", "download", SIGTERM);
    row("download, display gone", "download", 0);
    row("upload", "upgrade", SIGTERM);
    row("upload, from a keyboard", "upgrade", SIGINT);
    row("upload, display gone", "upgrade", 0);
}

void tst_Endings::endsAndLosesNothing()
{
    const auto [work, signal] = cells<QString, int>();
    QDir(folder("saved")).removeRecursively();
    QDir(dataFolder()).removeRecursively();
    QVERIFY(QDir().mkpath(folder("saved")));
    const QString recording = work == "playing" ? "clip.mp4" : "long.mp4";
    m_box->addRecording(recording,
                        work == "playing" ? readFile(m_clips.two()) : QByteArray(900000, 's'));
    QVERIFY(m_box->addFault("throttle 20000 on media"));
    QVERIFY(m_box->addFault("throttle 5000 on upload"));
    start(work);
    QTRY_VERIFY_WITH_TIMEOUT(isAtWork(work), 30000);

    const Stopwatch clock;
    if (signal == 0)
        m_program->write("x");
    else
        ::kill(pid_t(m_program->processId()), signal);
    QTRY_COMPARE_WITH_TIMEOUT(m_program->state(), QProcess::NotRunning, 10000);
    VERIFY_BELOW(clock.elapsed(), 2000);
    QCOMPARE(m_program->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_program->exitCode(), signal == 0 ? 1 : 0);
    // Nobody writes to the box or a file any more.
    QTRY_COMPARE(processesWith(ip(1).toUtf8() + ":8081", 0), 0);
    QCOMPARE(processesWith("30.5", 0), 0);
    if (work == "download") {
        QCOMPARE(PartFile::kept().size(), 1);
        QVERIFY(QFileInfo(folder("saved/long.mp4.part")).size() > 0);
    }
    if (work == "upgrade") {
        const QByteArray last = journal();
        QVERIFY2(last.contains("\"Uploading\"") && last.contains("\"Waiting\""), last.constData());
        QCOMPARE(m_box->activity().reboots, 0);
        // A question that the end takes away is not answered with no.
        start("asked");
        QTRY_VERIFY_WITH_TIMEOUT(isAtWork("asked"), 30000);
        m_program->terminate();
        QTRY_COMPARE(m_program->state(), QProcess::NotRunning);
        QVERIFY2(journal().contains("\"Waiting\""), journal().constData());
    }
    if (work == "upgrade" || work == "download")
        QVERIFY(readFile(logFile(ip(1)))
                    .contains(work == "upgrade" ? "KORA_1.2.0" : recording.toUtf8()));
    m_box->clearFaults();
    m_box->removeRecording(recording);
}

void tst_Endings::brokenSurroundings_data()
{
    const QString talks = "export QT_DEBUG_PLUGINS=1; ";
    columns<QString>("surroundings");
    row("nothing closed", QString());
    row("standard streams closed", "exec <&- >&- 2>&-");
    row("nobody reads them", talks + "exec 2> >(:) >&2; sleep 0.2");
    row("nobody empties them", talks + "exec 2> >(exec sleep 9); head -c 65536 /dev/zero >&2");
    row("no right to write", "touch $1/file; export APPDATA=$1/file");
    row("portable", "mkdir $1/stick; cp $2 $1/stick; touch $1/stick/portable.txt\n"
                    "export APPDATA=$1/elsewhere; set -- $1 $1/stick/${2##*/} \"${@:3}\"");
}

/// The real program, which a careless script has started.
void tst_Endings::brokenSurroundings()
{
    QFETCH(QString, surroundings);
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start("bash",
                  QStringList{"-c", surroundings + "\nfolder=$1; shift; exec \"$@\"", "_",
                              folder(QString()), TARN_HUB_PROGRAM, "--subnet", ip(0) + "/24",
                              "--fping", LAN_FPING, "--update-server", "http://" + ip(250) + ":9"});
    m_box->clearRequests();
    // It goes on at work, and has said things meanwhile.
    QTRY_VERIFY_WITH_TIMEOUT(m_box->requests().size() >= 3, 20000);
    for (const char* stream : {"0", "1", "2"}) {
        const QString file = QString("/proc/%1/fd/%2").arg(program.processId()).arg(stream);
        QVERIFY(!QFile::symLinkTarget(file).contains("socket:"));
    }
    QCOMPARE(program.state(), QProcess::Running);
    const Stopwatch clock;
    program.terminate();
    QTRY_COMPARE_WITH_TIMEOUT(program.state(), QProcess::NotRunning, 10000);
    VERIFY_BELOW(clock.elapsed(), 2000);
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
    const bool isPortable = surroundings.contains("portable.txt");
    QCOMPARE(QFileInfo::exists(folder("stick/data/Tarn Hub")), isPortable);
    QVERIFY(!QFileInfo::exists(folder("elsewhere")));
}

/// The window alone, as main() has it, on the box of the test that started it; its operator begins
/// `work` as soon as he can.
static int runAsProgram(QApplication& application, const QString& work, const QString& folder)
{
    StartUp::dress(application);
    Options options = WindowFixture::options();
    if (work == "search")
        options.sweep.fping = folder + "hanging-fping";
    Tarn_Hub window(options);
    window.watchEnds();
    window.show();
    auto* view = window.findChild<TreeView*>("deviceView");
    auto* list = window.findChild<ListWidget*>("storageWidget");
    std::unique_ptr<DialogAnswerer> answers;
    if (work != "asked") {
        answers = std::make_unique<DialogAnswerer>("Recovery");
        if (work == "download")
            answers->expect<QFileDialog>(
                [folder](QFileDialog& dialog) { choosePath(dialog, folder + "saved"); });
    }
    const auto say = [](const QString& text) {
        std::puts(qPrintable(text));
        std::fflush(stdout);
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &window, [&] {
        if (work == "asked") {
            if (QApplication::activeModalWidget())
                say("asked");
            return;
        }
        Item* box = view->treeModel()->find(WindowFixture::ip(1));
        if (!box || !WindowFixture::isKnown(*box))
            return;
        timer.stop();
        if (work == "upgrade") {
            view->selectAll();
            WindowFixture::drop(window.findChild<QWidget*>("device_list"),
                                {folder + "KORA_1.2.0.623.dat"});
            return;
        }
        say("known");
        window.R_ActionClicked(Action::Select, box);
    });
    timer.start(50);
    QTimer rows;
    QObject::connect(&rows, &QTimer::timeout, &window, [&] {
        if (list->count() == 0)
            return;
        rows.stop();
        if (work == "download")
            window.R_download({list->item(0)});
        if (work == "playing") {
            list->setCurrentRow(0);
            window.findChild<QAbstractButton*>("video_play")->click();
            say("playing");
        }
    });
    rows.start(50);
    // As the library of the window system does when it has lost its server.
    QSocketNotifier word(0, QSocketNotifier::Read);
    QObject::connect(&word, &QSocketNotifier::activated, &window, [] { std::exit(1); });
    QTimer::singleShot(60000, &application, [] { std::abort(); });
    const int exitCode = QApplication::exec();
    StartUp::limitEnd(exitCode);
    return exitCode;
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == "--as-program")
        return runAsProgram(application, arguments.value(2), arguments.value(3));
    tst_Endings test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_endings.moc"
