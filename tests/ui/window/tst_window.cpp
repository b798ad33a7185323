// SPDX-License-Identifier: MIT
#include "tests/support/window_fixture.h"

#include <QLabel>
#include <QMenu>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>

/// The real window on a network without boxes.
class tst_Window : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void init() { open(); }
    void cleanup() { close(); }

    void slotsStandInTheirOrder()
    {
        QStringList names;
        const QMetaObject& meta = Tarn_Hub::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            if (meta.method(i).methodType() == QMetaMethod::Slot)
                names << meta.method(i).name();
        }
        const QString expected =
            "refreshLocalIP refreshDeviceState R_delayAction R_findDeviceIP "
            "R_refreshDeviceIP R_finished R_readyReadStandardOutput R_stateChanged "
            "R_download R_delete R_ActionClicked R_playstatus R_timerSliderout "
            "on_save_clicked on_refreshDevice_clicked on_firmwareUpdate_clicked "
            "on_HB_clicked on_HX2_clicked on_HX3_clicked on_language_clicked "
            "on_recode_clicked on_collapse_clicked on_expand_clicked on_full_clicked "
            "on_colsefull_clicked on_md5_clicked on_video_play_clicked "
            "on_video_after_clicked on_video_front_clicked on_switch_monitor_clicked "
            "on_eParam_SDIVolumeSlider_valueChanged "
            "on_eParam_LineinVolumeSlider_valueChanged "
            "on_eParam_LineinDelaySlider_valueChanged on_H264_clicked on_H265_clicked "
            "on_pushButton_hxdec_on_clicked on_pushButton_live_on_clicked";
        QCOMPARE(names, expected.split(' '));
        // Every slot named after a widget finds that widget; a form that renames one loses it.
        for (const QString& name : names) {
            if (name.startsWith("on_"))
                child<QWidget>(name.section('_', 1, -2).toUtf8().constData());
        }
    }

    /// They are told until they are there, and then used without a new start.
    void missingToolsAreTold()
    {
        close();
        addBox(7);
        Options with = options();
        const QString suffix = QFileInfo(LAN_FPING).suffix();
        with.sweep.fping = appData() + "/fping" + (suffix.isEmpty() ? "" : '.' + suffix);
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", "");
        open(with);
        QTRY_VERIFY(child<QWidget>("tool_notice")->isVisible());
        qputenv("PATH", path);
        const QString text = child<QLabel>("tool_text")->text();
        QVERIFY2(text.contains(with.sweep.fping) && text.contains("未找到 curl"), qPrintable(text));
#ifdef Q_OS_WIN // it looks beside itself
        qputenv("KORA_LAN_FPING",
                QFileInfo(LAN_FPING).path().toUtf8() + "/fping/fping_x64/fping.exe");
#endif
        QVERIFY(QFile::copy(LAN_FPING, with.sweep.fping));
        QTRY_VERIFY_WITH_TIMEOUT(child<QWidget>("tool_notice")->isHidden(), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(item(7), 15000);
    }

    void startsWithItsPanes()
    {
        QCOMPARE(window().windowTitle(), QString("Tarn Hub v1.0.0.10"));
        QCOMPARE(child<QSplitter>("main_splitter")->sizes().first(), 350);
        for (const char* hidden :
             {"expand", "colsefull", "md5", "widget_play_progress", "monitor_bottom", "web_widget"})
            QVERIFY2(child<QWidget>(hidden)->isHidden(), hidden);
        QVERIFY(child<QWidget>("middle_widget")->isVisible());
        QVERIFY(!child<QSplitter>("main_splitter")->handle(1)->isEnabled());
    }

    void languagesLeaveNothingBehind()
    {
        const QRegularExpression chinese("\\p{Han}");
        QVERIFY(!visibleTexts().filter(chinese).isEmpty());
        chooseLanguage(2);
        QTRY_COMPARE(visibleTexts().filter(chinese).join('|'), QString());
        QCOMPARE(child<QAbstractButton>("save")->text(), QString("Save"));
        chooseLanguage(1);
        QTRY_COMPARE(child<QAbstractButton>("save")->text(), QString("保存"));
        QCOMPARE(child<QLabel>("device_config_title")->text(), QString("配置区域:"));
    }

    void scrollingChangesNoValue()
    {
        child<QWidget>("right_widget")->show();
        QVERIFY(QTest::qWaitForWindowExposed(&window()));
        for (const char* name : {"eParam_NDIHXGopLength", "eParam_NDIHXBitRate", "eParam_SDIVolume",
                                 "eParam_LineinVolume", "eParam_LineinDelay"}) {
            auto* spin = child<QSpinBox>(name);
            auto* slider = child<QSlider>((QByteArray(name) + "Slider").constData());
            slider->setValue(17);
            QCOMPARE(spin->value(), 17);
            spin->setValue(11);
            QCOMPARE(slider->value(), 11);
            for (QWidget* target : {static_cast<QWidget*>(spin), static_cast<QWidget*>(slider)}) {
                target->setEnabled(true); // as after the box has told it
                const QPointF middle = QRectF(target->rect()).center();
                QWheelEvent wheel(middle, target->mapToGlobal(middle.toPoint()), {}, QPoint(0, 240),
                                  Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
                QApplication::sendEvent(target, &wheel);
                QCOMPARE(spin->value(), 11);
            }
        }
    }

    void fullScreenComesAndGoes()
    {
        auto* video = child<QWidget>("video_widget");
        auto* left = child<QWidget>("left_splitter");
        const auto isFull = [&] { return window().isFullScreen() && left->isHidden(); };
        const auto isNormal = [&] { return !window().isFullScreen() && left->isVisible(); };

        QTest::mouseDClick(video, Qt::LeftButton);
        QTRY_VERIFY(isFull());
        QTest::mouseDClick(video, Qt::LeftButton);
        QTRY_VERIFY(isNormal());
        child<QWidget>("deviceView")->setFocus();
        click("full");
        QTRY_VERIFY(isFull());
        QTRY_VERIFY(video->hasFocus());
        QTest::keyClick(video, Qt::Key_Escape);
        QTRY_VERIFY(isNormal());
        click("full");
        QTRY_VERIFY(isFull());
        click("colsefull");
        QTRY_VERIFY(isNormal());
        // What was hidden before stays so.
        QVERIFY(child<QWidget>("right_widget")->isHidden());
    }

    void filesMayBeDroppedOnTwoAreas()
    {
        QMimeData files;
        files.setUrls({QUrl::fromLocalFile("/tmp/fw.dat")});
        QMimeData text;
        text.setText("no file");
        for (const char* name : {"device_list", "page_video"}) {
            auto* area = child<QWidget>(name);
            QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &files,
                                  Qt::LeftButton, Qt::NoModifier);
            enter.ignore();
            QApplication::sendEvent(area, &enter);
            QVERIFY(enter.isAccepted());
            QCOMPARE(enter.dropAction(), Qt::CopyAction);
            QVERIFY(area->property("dragOver").toBool());
            QDragLeaveEvent leave;
            QApplication::sendEvent(area, &leave);
            QVERIFY(!area->property("dragOver").toBool());

            QDragEnterEvent other(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton,
                                  Qt::NoModifier);
            other.ignore();
            QApplication::sendEvent(area, &other);
            QVERIFY(!other.isAccepted());
            QVERIFY(!area->property("dragOver").toBool());
        }
    }

private:
    QStringList visibleTexts()
    {
        QStringList texts;
        const auto widgets = window().findChildren<QWidget*>();
        for (const QWidget* widget : widgets) {
            texts << widget->toolTip() << widget->accessibleName();
            for (const char* property : {"text", "placeholderText", "windowTitle"})
                texts << widget->property(property).toString();
        }
        return texts;
    }
};

QTEST_MAIN(tst_Window)
#include "tst_window.moc"
