// SPDX-License-Identifier: MIT
#include "tests/support/window_fixture.h"
#include "tests/ui/upgrade/campaign_history.h"

#include <csignal>
#include <cstdio>
#include <thread>

/// An operator who upgrades sixty boxes in the real window, again and again, on a bad day. Each
/// seed is one day; more with TARN_LIVES, beginning with TARN_SEED, or that one alone.
class tst_UpgradeCampaign : public QObject
{
    Q_OBJECT

private slots:
    void noBoxIsHarmed();
};

void tst_UpgradeCampaign::noBoxIsHarmed()
{
    const bool single = qEnvironmentVariableIsSet("TARN_SEED");
    const int asked = qEnvironmentVariableIntValue("TARN_LIVES");
    const int wanted = asked > 0 ? asked : single ? 1 : 500;
    auto seed = quint32(qEnvironmentVariableIntValue("TARN_SEED"));
    int lives = 0;
    QMap<QString, int> endings;
    QStringList problems;
    do {
        CampaignHistory history(seed);
        const QStringList found = history.run();
        for (const QString& problem : found) {
            problems << QString("TARN_SEED=%1: %2").arg(seed).arg(problem);
            qWarning().noquote() << problems.last();
        }
        for (const QString& line : found.isEmpty() ? QStringList() : history.story(found))
            qWarning().noquote() << line;
        lives += history.lives();
        const auto ended = history.endings();
        for (auto it = ended.cbegin(); it != ended.cend(); ++it)
            endings[it.key()] += it.value();
        qInfo() << "seed" << seed << lives << "lives" << problems.size() << "problems";
        ++seed;
    } while (lives < wanted);
    for (auto it = endings.cbegin(); it != endings.cend(); ++it)
        qInfo().noquote() << it.value() << it.key();
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));
    QVERIFY(lives < 500 || endings.size() >= 10);
}

/// The window, and an operator who does what the lines on the standard input say.
class Operator
{
public:
    Operator(quint32 seed, const QString& package)
        : m_story(seed)
        , m_package(package)
        , m_window(options())
        , m_answers(m_story.chance(85) ? "okpushButton" : "cancelpushButton")
    {
        m_window.show();
        std::thread([this] { listen(); }).detach();
        QObject::connect(&m_known, &QTimer::timeout, &m_window, [this] { sayKnown(); });
        m_known.start(200);
    }

private:
    static Options options()
    {
        Options options = WindowFixture::options();
        options.upgradeTickMs = CampaignHistory::TickMs;
        return options;
    }

    QList<Item*> boxes() const { return m_view->treeModel()->items("KORA"); }

    void sayKnown()
    {
        // Not all of them ever tell who they are.
        const QList<Item*> all = boxes();
        const auto known = std::count_if(
            all.begin(), all.end(), [](const Item* box) { return WindowFixture::isKnown(*box); });
        if (all.size() < CampaignHistory::Boxes || known < CampaignHistory::Boxes * 3 / 4)
            return;
        m_known.stop();
        std::puts("ready");
        std::fflush(stdout);
    }

    /// In a thread of its own: not every system tells when there is something to read. Ends with
    /// the order to close, which comes by itself when the test has gone.
    void listen()
    {
        QByteArray words;
        while (words != "close") {
            char line[64];
            words = std::fgets(line, sizeof line, stdin) ? QByteArray(line).trimmed() : "close";
            QMetaObject::invokeMethod(&m_window, [this, words] { obey(words); });
        }
    }

    void obey(const QByteArray& words)
    {
        if (words == "close")
            QCoreApplication::exit();
        else
            upgrade(words == "keep");
    }

    void upgrade(bool keep)
    {
        m_view->selectAll();
        const auto all = boxes();
        for (const Item* box : all) {
            if (m_story.chance(10))
                m_view->selectionModel()->select(m_view->treeModel()->indexOf(box),
                                                 QItemSelectionModel::Deselect);
        }
        m_answers.setButton(keep ? "Recovery" : "okpushButton");
        WindowFixture::drop(m_window.findChild<QWidget*>("device_list"), {m_package});
    }

    UpgradeStory m_story;
    const QString m_package;
    Tarn_Hub m_window;
    TreeView* m_view = m_window.findChild<TreeView*>("deviceView");
    DialogAnswerer m_answers;
    QTimer m_known;
};

static int runAsProgram(QApplication& application, const QStringList& arguments)
{
#ifdef Q_OS_UNIX
    // A full disk is an error, not the end.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    StartUp::dress(application);
    const Operator at(arguments.value(2).toUInt(), arguments.value(3));
    return QApplication::exec();
}

int main(int argc, char* argv[])
{
    qputenv("QTEST_FUNCTION_TIMEOUT", "20000000");
    QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == "--as-program")
        return runAsProgram(application, arguments);
    tst_UpgradeCampaign test;
    return QTest::qExec(&test, arguments << QStringLiteral("-maxwarnings") << QStringLiteral("0"));
}
#include "tst_upgrade_campaign.moc"
