// SPDX-License-Identifier: MIT
#include "tests/ui/upgrade/upgrade_fixture.h"

#include <QLabel>

/// Sixty boxes at once, some with every fault there is: what is told about each one is right, and
/// the settings come back byte for byte.
class tst_UpgradeSixty : public QObject, UpgradeFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void upgradesSixtyBoxes();

private:
    struct Kind {
        const char* name;
        int boxes;
        const char* fault; ///< "@" stands for the number of the box
        bool succeeds;     ///< counts as successful in the end message
        const char* verdict;
        const char* settings;
        bool newVersion;
        bool settingsAsBefore;
    };

    void furnishBoxes();
    const Kind& kindOf(int host) const { return kinds[size_t(m_kindOf.value(host))]; }
    void checkBox(int host, const QMap<QString, QString>& row);

    static constexpr int count = 60;
    static constexpr const char* ownAddressOnly = "address";
    static const std::array<Kind, 15> kinds;

    QMap<int, int> m_kindOf;
    QMap<int, QMap<QString, QString>> m_before;
};

const std::array<tst_UpgradeSixty::Kind, 15> tst_UpgradeSixty::kinds{{
    {"good", 23, "", true, "已证实", "已恢复", true, true},
    {"refused", 3, "refuse", false, "失败", "未能完整读取，不恢复", false, true},
    {"switched off", 1, "off", false, "失败", "未能完整读取，不恢复", false, true},
    {"wrong digest", 3, "wrong-md5", false, "失败", ownAddressOnly, false, true},
    {"always cut", 3, "cut-upload 60", false, "失败", ownAddressOnly, false, true},
    {"cut once", 3, "cut-upload 60 times 1", true, "已证实", "已恢复", true, true},
    {"no answer to the activation", 3, "silent on ota", false, "未证实", "已恢复", false, true},
    {"hangs up on the activation", 2, "hang-up 0 on ota", true, "已证实", "已恢复", true, true},
    {"stays away", 3, "ota-stays-away", true, "未证实", "设备未回应，待恢复", true, false},
    {"old version", 3, "ota-old-version", true, "未证实", "已恢复", false, true},
    {"loses its settings", 4, "ota-loses-settings", true, "已证实", "已恢复", true, true},
    {"moves", 4, "ota-moves " TEST_BLOCK ".1@", true, "已证实", "已恢复", true, true},
    {"takes no name", 2, "fail write+eParam_NDIName", true, "已证实", "1项失败", true, true},
    {"one value unreadable", 2, "garbage on read+eParam_NTPServer", false, "失败",
     "未能完整读取，不恢复", false, true},
    {"refuses the upload once", 1, "http-error 503 on upload times 1", true, "已证实", "已恢复",
     true, true},
}};

void tst_UpgradeSixty::initTestCase()
{
    begin();
    m_package = writePackage(m_fixture->appData() + "/KORA 固件_1.2.0.623.dat", 3000000);
    furnishBoxes();
    m_fixture->openKnowing(m_boxes.keys(), quickUpgrades(40));
}

void tst_UpgradeSixty::furnishBoxes()
{
    makeBoxes(count);
    static const char* const names[] = {
        "a=b=c", "\"quoted\" 'name' \\",       "名前 カメラ １", " blanks at  both ends ",
        "",      "100+1 (Stage); $HOME `id` #"};
    int host = 0;
    for (int kind = 0; kind < int(kinds.size()); ++kind) {
        for (int i = 0; i < kinds[size_t(kind)].boxes; ++i) {
            ++host;
            m_kindOf[host] = kind;
            sim::VirtualBox* box = m_boxes[host];
            box->setParameter("eParam_NDIName", QString::fromUtf8(names[host % 6]));
            box->setParameter("eParam_NTPServer", host % 5 ? "ntp=1.example" : "");
            box->setParameter("eParam_NDIHXQuality", QString::number(host % 5));
            // A fixed address, which the upgrade switches to an assigned one meanwhile.
            if (host % 2)
                box->setParameter("eParam_DHCP", "0");
            m_before[host] = box->parameters();
        }
    }
    QCOMPARE(host, count);
}

void tst_UpgradeSixty::upgradesSixtyBoxes()
{
    TreeView* view = m_fixture->deviceView();
    for (auto it = m_boxes.cbegin(); it != m_boxes.cend(); ++it) {
        QString fault = QString::fromLatin1(kindOf(it.key()).fault);
        fault.replace('@', QString::number(it.key()).rightJustified(2, '0'));
        if (fault == "off")
            it.value()->unplug();
        else if (!fault.isEmpty())
            QVERIFY2(it.value()->addFault(fault), qPrintable(fault));
        // Moving needs an assigned address; the upgrade sees to that by itself.
    }
    const int shown = 1;
    m_fixture->clickRow(shown);
    view->selectAll();
    DialogAnswerer answers("Recovery");
    drop({m_package});
    QTRY_COMPARE(answers.texts(), QStringList{question(count)});
    answers.setButton("okpushButton");
    answers.clear();

    // In the middle of it.
    QTRY_VERIFY_WITH_TIMEOUT(view->isUpgradeTickRunning(), 5000);
    QVERIFY(m_fixture->child<QWidget>("page_wait")->isVisible());
    auto* tip = m_fixture->child<QLabel>("tip");
    QTRY_VERIFY_WITH_TIMEOUT(tip->text().contains("上传固件 成功"), 20000);
    const QString status = m_fixture->child<QLabel>("upgrade_status")->text();
    QVERIFY2(status.startsWith("升级中,升级期间请不要关闭电源或者操作KORA.共[60]个,成功["),
             qPrintable(status));
    m_fixture->child<QAbstractButton>("upgradeReport")->click();
    QVERIFY(!m_fixture->window().close());
    QTRY_COMPARE(answers.texts(), QStringList{"正在对KORA升级固件,请勿关闭软件."});
    answers.clear();
    // A box in the middle of its upgrade is not taken a second time.
    answers.setButton("cancelpushButton");
    WindowFixture::drop(m_fixture->child<QWidget>("page_video"), {m_package});
    QTRY_COMPARE(answers.texts().size(), 1);
    QVERIFY(!answers.texts().first().contains("60"));
    answers.clear();

    // The end.
    int successful = 0;
    for (const Kind& kind : kinds)
        successful += kind.succeeds ? kind.boxes : 0;
    QTRY_COMPARE_WITH_TIMEOUT(answers.texts(),
                              QStringList{QString("部分升级完成,KORA即将重启完成固件升级."
                                                  "成功[%1]个,未知[%2]个")
                                              .arg(successful)
                                              .arg(count - successful)},
                              70000);
    QVERIFY(!view->isUpgradeTickRunning());

    // What really happened.
    auto* summary = m_fixture->child<QLabel>("upgradeReportSummary");
    QTRY_VERIFY_WITH_TIMEOUT(summary->text().endsWith("进行中[0]个"), 60000);
    // The last boxes restart with their settings, some of them to where they came from.
    const auto busy = [view] {
        const auto boxes = view->treeModel()->items("KORA");
        return std::count_if(boxes.begin(), boxes.end(), [](auto* box) { return box->isOwned(); });
    };
    QTRY_COMPARE_WITH_TIMEOUT(int(busy()), 0, 20000);
    // Where they are is told when they have been seen there.
    const auto isTold = [this] {
        const auto rows = reportRows(*m_fixture);
        return std::all_of(m_boxes.keyBegin(), m_boxes.keyEnd(), [&](int host) {
            return rows[m_fixture->ip(host)]["设备"].section(' ', -1) == m_boxes[host]->address();
        });
    };
    (void)QTest::qWaitFor(isTold, 10000);
    const auto rows = reportRows(*m_fixture);
    QCOMPARE(rows.size(), count);
    for (auto it = m_boxes.cbegin(); it != m_boxes.cend(); ++it)
        checkBox(it.key(), rows.value(m_fixture->ip(it.key())));
    const QString csv = QString::fromUtf8(newestCsv(*m_fixture));
    QCOMPARE(csv.count("\r\n"), count + 1);
    QCOMPARE(csv.count("\"已证实\""),
             int(summary->text().section("已证实[", 1).section(']', 0, 0).toInt()));
}

void tst_UpgradeSixty::checkBox(int host, const QMap<QString, QString>& row)
{
    const Kind& kind = kindOf(host);
    const QByteArray which = QByteArray(kind.name) + ", box " + QByteArray::number(host) + ": ";
    const auto same = [&which](const QString& actual, const QString& expected, const char* what) {
        if (actual != expected)
            QTest::qFail(which + what + " is \"" + actual.toUtf8() + "\", not \"" +
                             expected.toUtf8() + "\"",
                         __FILE__, __LINE__);
    };
    const sim::VirtualBox* box = m_boxes.value(host);
    same(row["结果"], kind.verdict, "verdict");
    QString settings = kind.settings;
    // Of a box that stayed as it is only the address is put back.
    if (settings == ownAddressOnly)
        settings = m_before[host]["eParam_DHCP"] == "0" ? "已恢复" : "未改动，无需恢复";
    same(row["设置恢复"], settings, "settings");
    // What the list says may be old: of a box that did not answer nothing is known.
    const bool answered = QString(kind.fault) != "off" && QString(kind.fault) != "refuse";
    same(row["升级前版本"], answered ? m_before[host]["eParam_FirmVersion"] : QString(),
         "version before");
    same(row["固件MD5"], md5Of(readFile(m_package)), "digest");
    same(row["MAC地址"], m_before[host]["eParam_MACAddress"], "MAC address");
    const bool proved = QString(kind.verdict) == "已证实";
    same(QString::number(row["升级后版本"] == "1.2.0.623"), QString::number(proved), "new version");
    same(QString::number(row["设备"].contains(" → ")),
         QString::number(box->address() != m_fixture->ip(host)), "the move in the report");
    QMap<QString, QString> expected = m_before[host];
    if (kind.newVersion)
        expected["eParam_FirmVersion"] = "1.2.0.623";
    if (!kind.settingsAsBefore)
        return;
    const auto now = box->parameters();
    for (auto it = expected.cbegin(); it != expected.cend(); ++it)
        same(now.value(it.key()), it.value(), qPrintable(it.key()));
}

QTEST_MAIN(tst_UpgradeSixty)
#include "tst_upgrade_sixty.moc"
