// SPDX-License-Identifier: MIT
#include "common/platform.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"
#include "ui/window/options.h"
#include "ui/window/start_up.h"
#include "ui/window/tarn_hub.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMetaMethod>
#include <QMimeData>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

/// The real window on a network without boxes.
class tst_Window : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void slotsStandInTheirOrder();
    void startsWithItsPanes();
    void languagesLeaveNothingBehind();
    void scrollingChangesNoValue();
    void fullScreenComesAndGoes();
    void filesMayBeDroppedOnTwoAreas();
    void closingIsRefusedDuringAnUpgrade();

private:
    template <class T> T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(name);
        if (!found)
            qFatal("no widget %s", name);
        return found;
    }
    void chooseLanguage(int row);
    QStringList visibleTexts() const;

    QTemporaryDir m_data;
    std::unique_ptr<Tarn_Hub> m_window;
};

void tst_Window::initTestCase()
{
    qputenv("APPDATA", m_data.path().toUtf8());
    StartUp::dress(*qApp);
}

void tst_Window::init()
{
    Options options;
    options.sweep.fping = Platform::fpingPath(QString());
    options.sweep.subnets = QStringList{"127.77.10.0/24"};
    options.updateServer = "http://127.77.10.1:9";
    m_window = std::make_unique<Tarn_Hub>(options);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    // The second stage of the start-up hides what needs a selected box.
    QTRY_VERIFY(child<QWidget>("right_widget")->isHidden());
}

void tst_Window::cleanup()
{
    m_window.reset();
}

void tst_Window::slotsStandInTheirOrder()
{
    QStringList names;
    const QMetaObject& meta = Tarn_Hub::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Slot)
            names << meta.method(i).name();
    }
    const QStringList expected{"refreshLocalIP",
                               "refreshDeviceState",
                               "R_delayAction",
                               "R_findDeviceIP",
                               "R_refreshDeviceIP",
                               "R_finished",
                               "R_readyReadStandardOutput",
                               "R_stateChanged",
                               "R_download",
                               "R_delete",
                               "R_ActionClicked",
                               "R_playstatus",
                               "R_timerSliderout",
                               "on_save_clicked",
                               "on_refreshDevice_clicked",
                               "on_firmwareUpdate_clicked",
                               "on_HB_clicked",
                               "on_HX2_clicked",
                               "on_HX3_clicked",
                               "on_language_clicked",
                               "on_recode_clicked",
                               "on_collapse_clicked",
                               "on_expand_clicked",
                               "on_full_clicked",
                               "on_colsefull_clicked",
                               "on_md5_clicked",
                               "on_video_play_clicked",
                               "on_video_after_clicked",
                               "on_video_front_clicked",
                               "on_switch_monitor_clicked",
                               "on_eParam_SDIVolumeSlider_valueChanged",
                               "on_eParam_LineinVolumeSlider_valueChanged",
                               "on_eParam_LineinDelaySlider_valueChanged",
                               "on_H264_clicked",
                               "on_H265_clicked",
                               "on_pushButton_hxdec_on_clicked",
                               "on_pushButton_live_on_clicked"};
    QCOMPARE(names, expected);
    // Every slot named after a widget finds that widget; a form that renames one loses it.
    for (const QString& name : names) {
        if (name.startsWith("on_"))
            child<QWidget>(name.section('_', 1, -2).toUtf8().constData());
    }
}

void tst_Window::startsWithItsPanes()
{
    QCOMPARE(m_window->windowTitle(), QString("Tarn Hub v1.0.0.10"));
    QCOMPARE(child<QSplitter>("main_splitter")->sizes().first(), 350);
    for (const char* hidden :
         {"expand", "colsefull", "md5", "widget_play_progress", "monitor_bottom", "web_widget"})
        QVERIFY2(child<QWidget>(hidden)->isHidden(), hidden);
    QVERIFY(child<QWidget>("middle_widget")->isVisible());
    QVERIFY(!child<QSplitter>("main_splitter")->handle(1)->isEnabled());
}

void tst_Window::chooseLanguage(int row)
{
    // The menu opens a loop of its own, so the choice is made from inside.
    QTimer::singleShot(100, this, [row] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(menu->actions().at(row)).center());
    });
    QTest::mouseClick(child<QWidget>("language"), Qt::LeftButton);
}

QStringList tst_Window::visibleTexts() const
{
    QStringList texts;
    const auto widgets = m_window->findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        texts << widget->toolTip() << widget->accessibleName();
        for (const char* property : {"text", "placeholderText", "windowTitle"})
            texts << widget->property(property).toString();
    }
    return texts;
}

void tst_Window::languagesLeaveNothingBehind()
{
    const QRegularExpression chinese("\\p{Han}");
    QVERIFY(!visibleTexts().filter(chinese).isEmpty());
    chooseLanguage(1);
    QTRY_COMPARE(visibleTexts().filter(chinese), QStringList());
    QCOMPARE(child<QAbstractButton>("save")->text(), QString("Save"));
    chooseLanguage(0);
    QTRY_COMPARE(child<QAbstractButton>("save")->text(), QString("保存"));
    QCOMPARE(child<QLabel>("device_config_title")->text(), QString("配置区域:"));
}

void tst_Window::scrollingChangesNoValue()
{
    child<QWidget>("right_widget")->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    for (const char* name : {"eParam_NDIHXGopLength", "eParam_NDIHXBitRate", "eParam_SDIVolume",
                             "eParam_LineinVolume", "eParam_LineinDelay"}) {
        auto* spin = child<QSpinBox>(name);
        auto* slider = child<QSlider>((QByteArray(name) + "Slider").constData());
        slider->setValue(17);
        QCOMPARE(spin->value(), 17);
        spin->setValue(11);
        QCOMPARE(slider->value(), 11);
        for (QWidget* target : {static_cast<QWidget*>(spin), static_cast<QWidget*>(slider)}) {
            const QPointF middle = QRectF(target->rect()).center();
            QWheelEvent wheel(middle, target->mapToGlobal(middle.toPoint()), {}, QPoint(0, 240),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(target, &wheel);
            QCOMPARE(spin->value(), 11);
        }
    }
}

void tst_Window::fullScreenComesAndGoes()
{
    auto* video = child<QWidget>("video_widget");
    auto* left = child<QWidget>("left_splitter");
    const auto isFull = [&] { return m_window->isFullScreen() && left->isHidden(); };
    const auto isNormal = [&] { return !m_window->isFullScreen() && left->isVisible(); };

    QTest::mouseDClick(video, Qt::LeftButton);
    QTRY_VERIFY(isFull());
    QTest::mouseDClick(video, Qt::LeftButton);
    QTRY_VERIFY(isNormal());
    child<QWidget>("deviceView")->setFocus();
    QTest::mouseClick(child<QWidget>("full"), Qt::LeftButton);
    QTRY_VERIFY(isFull());
    QTRY_VERIFY(video->hasFocus());
    QTest::keyClick(video, Qt::Key_Escape);
    QTRY_VERIFY(isNormal());
    QTest::mouseClick(child<QWidget>("full"), Qt::LeftButton);
    QTRY_VERIFY(isFull());
    QTest::mouseClick(child<QWidget>("colsefull"), Qt::LeftButton);
    QTRY_VERIFY(isNormal());
    // What was hidden before stays so.
    QVERIFY(child<QWidget>("right_widget")->isHidden());
}

void tst_Window::filesMayBeDroppedOnTwoAreas()
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/tmp/fw.dat")});
    QMimeData text;
    text.setText("no file");
    for (const char* name : {"device_list", "page_video"}) {
        auto* area = child<QWidget>(name);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &files, Qt::LeftButton,
                              Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(area, &enter);
        QVERIFY(enter.isAccepted());
        QCOMPARE(enter.dropAction(), Qt::CopyAction);
        QVERIFY(area->property("dragOver").toBool());
        QDragLeaveEvent leave;
        QApplication::sendEvent(area, &leave);
        QVERIFY(!area->property("dragOver").toBool());

        QDragEnterEvent other(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
        other.ignore();
        QApplication::sendEvent(area, &other);
        QVERIFY(!other.isAccepted());
        QVERIFY(!area->property("dragOver").toBool());
    }
}

void tst_Window::closingIsRefusedDuringAnUpgrade()
{
    TreeModel* model = child<TreeView>("deviceView")->treeModel();
    auto* group = new Item;
    group->setProperty("title", "KORA");
    group->setProperty("isdir", true);
    model->append(group, model->root(), true);
    auto* box = new Item;
    box->setProperty("deviceip", "127.77.10.200");
    box->setProperty("upgrading", true);
    model->append(box, group, false);

    int notices = 0;
    QTimer answer;
    connect(&answer, &QTimer::timeout, this, [&] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            ++notices;
            QTest::keyClick(dialog, Qt::Key_Return);
        }
    });
    answer.start(50);
    QVERIFY(!m_window->close());
    QCOMPARE(notices, 1);
    box->setProperty("upgradtimeout", true);
    QVERIFY(m_window->close());
    QCOMPARE(notices, 1);
}

QTEST_MAIN(tst_Window)
#include "tst_window.moc"
