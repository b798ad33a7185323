// SPDX-License-Identifier: MIT
#include "tests/support/dialog_answerer.h"
#include "tests/support/table.h"
#include "widgets/input_ui.h"
#include "widgets/message_box.h"

#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <QTranslator>

#include <memory>

namespace
{

/// The longest names that the program's translations give the buttons.
class EnglishButtons : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        static const QMap<QString, QString> names{
            {"确定", "OK"}, {"取消", "Cancel"}, {"确定并保留配置", "OK, keep settings"}};
        return qstrcmp(context, "messageBox") == 0 ? names.value(source) : QString();
    }
};

QPushButton* button(const messageBox* box, const char* name)
{
    return box->findChild<QPushButton*>(name);
}

void press(messageBox* box, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(box->windowHandle(), key, modifiers);
}

} // namespace

class TestMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        m_answerer.reset();
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const QWidget* window : windows)
            QVERIFY2(!window->isVisible(), window->metaObject()->className());
    }

    void answers_data()
    {
        columns<bool, QString, int, QString, int>("withRecovery", "focus", "key", "click",
                                                  "answer");
        const int none = 0;
        for (bool recovery : {false, true}) {
            const QByteArray with = recovery ? " with recovery" : " without recovery";
            const auto each = [&](const char* name, const char* focus, int key, const char* clicked,
                                  int answer) {
                row(name + with, recovery, focus, key, clicked, answer);
            };
            each("return", "", Qt::Key_Return, "", 1);
            each("enter", "", Qt::Key_Enter, "", 1);
            each("escape", "", Qt::Key_Escape, "", 0);
            each("return on the text", "m_tipContent", Qt::Key_Return, "", 1);
            each("return on cancel", "cancelpushButton", Qt::Key_Return, "", 0);
            each("space on cancel", "cancelpushButton", Qt::Key_Space, "", 0);
            each("escape on the text", "m_tipContent", Qt::Key_Escape, "", 0);
            each("click ok", "", none, "okpushButton", 1);
            each("click cancel", "", none, "cancelpushButton", 0);
            each("frame", "", none, "frame", 0);
        }
        row("return on recovery", true, "Recovery", int(Qt::Key_Return), "", 2);
        row("click recovery", true, "", none, "Recovery", 2);
    }
    void answers()
    {
        QFETCH(bool, withRecovery);
        QFETCH(QString, focus);
        QFETCH(int, key);
        QFETCH(QString, click);
        QFETCH(int, answer);
        whenOpen([&](messageBox& box) {
            QVERIFY(button(&box, "okpushButton")->hasFocus());
            QCOMPARE(button(&box, "Recovery")->isVisible(), withRecovery);
            if (!focus.isEmpty())
                box.findChild<QWidget*>(focus)->setFocus();
            if (key != 0)
                press(&box, Qt::Key(key));
            else if (click == "frame")
                box.close();
            else
                QTest::mouseClick(box.findChild<QPushButton*>(click), Qt::LeftButton);
        });
        const QString text = "question";
        QCOMPARE(withRecovery ? messageBox::askWithRecovery(text, nullptr)
                              : messageBox::ask(text, nullptr),
                 answer);
    }

    void looks()
    {
        // A dark application sheet must not reach into the white box.
        qApp->setStyleSheet(
            "QWidget{color:#eeeeee;background:#222222;} QPushButton{min-height:10px;}"
            "QTextEdit{border:3px solid red;}");
        messageBox box("text");
        box.setRecoveryVisible(true);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QCOMPARE(box.size(), QSize(450, 160));
        QCOMPARE(box.minimumSize(), box.maximumSize());
        QVERIFY(box.findChild<QWidget*>("tailwidget")->height() >= 45);
        for (const char* name : {"okpushButton", "cancelpushButton", "Recovery"})
            QVERIFY2(button(&box, name)->height() >= 32, name);
        const QImage picture = box.grab().toImage();
        QCOMPARE(picture.pixelColor(5, 5), QColor(Qt::white));
        QCOMPARE(picture.pixelColor(5, 155), QColor(Qt::white));
        const QWidget* recovery = button(&box, "Recovery");
        const QPoint corner = recovery->mapTo(&box, QPoint(8, 8));
        QCOMPARE(picture.pixelColor(corner), QColor("#4E6EF2"));
        const auto* text = box.findChild<QTextEdit*>("m_tipContent");
        QCOMPARE(text->palette().color(QPalette::Text), QColor("#666666"));
        box.showInput();
        const auto* input = box.findChild<Inputui*>("input")->contentEdit();
        QCOMPARE(input->palette().color(QPalette::Text), QColor("#333333"));
        QCOMPARE(input->palette().color(QPalette::Base), QColor(Qt::white));
        box.close();
        qApp->setStyleSheet(QString());
    }

    void textIsShownAsItStands_data()
    {
        columns<QString, bool>("text", "scrolls");
        const QString chinese = QString::fromUtf8("设置参数部分失败,请检查KORA网络状态后重试.");
        row("short", chinese, false);
        row("two lines", chinese + "\n" + chinese, false);
        row("long", chinese.repeated(20), true);
        row("address without a break", "http://h/" + QString(190, 'W'), true);
        row("longer than the box", "http://h/" + QString(2000, 'W'), true);
        row("markup", "<b>x</b><img src='file:///none.png'><a href='x'>y</a>&lt;", false);
        row("empty", "", false);
    }
    void textIsShownAsItStands()
    {
        const auto [text, scrolls] = cells<QString, bool>();
        messageBox box(text);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        auto* shown = box.findChild<QTextEdit*>("m_tipContent");
        QCOMPARE(shown->toPlainText(), text);
        QCOMPARE(box.text(), text);
        // Nothing reaches beyond the right edge, and what does not fit below can be scrolled to.
        QVERIFY(shown->document()->idealWidth() <= shown->viewport()->width());
        QTRY_COMPARE(shown->verticalScrollBar()->maximum() > 0, scrolls);
        QCOMPARE(shown->verticalScrollBar()->value(), 0);
        QTextCursor end = shown->textCursor();
        end.movePosition(QTextCursor::End);
        const int below = shown->cursorRect(end).bottom() - shown->viewport()->height();
        QVERIFY(below <= shown->verticalScrollBar()->maximum());
        QVERIFY(box.rect().contains(QRect(shown->mapTo(&box, QPoint()), shown->size())));
    }

    /// Whether there is a scroll bar must not decide whether there is one.
    void everyLengthComesToRest()
    {
        class Counter : public QObject
        {
        public:
            int resizes = 0;
            bool eventFilter(QObject*, QEvent* event) override
            {
                resizes += event->type() == QEvent::Resize ? 1 : 0;
                return false;
            }
        } counter;
        for (int blanks = 0; blanks < 12; ++blanks) {
            for (int letters = 36; letters < 66; ++letters) {
                const QString word = QString(blanks, 'i') + QString(letters, 'n');
                messageBox box(word + ' ' + word + " x?");
                box.setAttribute(Qt::WA_DontShowOnScreen); // so many windows take their time
                auto* shown = box.findChild<QTextEdit*>("m_tipContent");
                shown->installEventFilter(&counter);
                box.show();
                QCoreApplication::processEvents();
                counter.resizes = 0;
                for (int n = 0; n < 20; ++n)
                    QCoreApplication::processEvents();
                QVERIFY2(counter.resizes < 5, qPrintable(box.text()));
            }
        }
    }

    void addressInTheTextCanBeCopied()
    {
        messageBox box("192.168.1.88 restarts");
        box.show();
        box.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&box));
        auto* shown = box.findChild<QTextEdit*>("m_tipContent");
        const QPoint first = shown->cursorRect(QTextCursor(shown->document())).center();
        QTest::mouseDClick(shown->viewport(), Qt::LeftButton, {}, first + QPoint(4, 0));
        QVERIFY(shown->textCursor().selectedText().startsWith("192"));

        shown->setFocus();
        press(&box, Qt::Key_A, Qt::ControlModifier);
        press(&box, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), "192.168.1.88 restarts");
        press(&box, Qt::Key_Delete);
        QCOMPARE(box.text(), "192.168.1.88 restarts");
    }

    void buttonsFitInTheirLanguages()
    {
        messageBox box("text");
        box.setRecoveryVisible(true);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        EnglishButtons english;
        for (const char* recovery : {"确定并保留配置", "OK, keep settings", "확인 및 설정 유지"}) {
            if (QByteArray(recovery).startsWith("OK")) {
                qApp->installTranslator(&english);
                QTRY_COMPARE(button(&box, "Recovery")->text(), QString(recovery));
                QCOMPARE(button(&box, "cancelpushButton")->text(), "Cancel");
            } else {
                button(&box, "Recovery")->setText(QString::fromUtf8(recovery));
            }
            QCoreApplication::sendPostedEvents();
            for (const char* name : {"okpushButton", "cancelpushButton", "Recovery"}) {
                const QPushButton* one = button(&box, name);
                QVERIFY2(one->width() >= one->sizeHint().width(), recovery);
                QVERIFY2(box.rect().contains(QRect(one->mapTo(&box, QPoint()), one->size())),
                         recovery);
            }
        }
        qApp->removeTranslator(&english);
        QTRY_COMPARE(button(&box, "Recovery")->text(), QString("确定并保留配置"));
    }

    void renamedButtonsKeepTheirKeys()
    {
        messageBox box("text");
        box.setButtonText("Install", "");
        EnglishButtons english;
        qApp->installTranslator(&english);
        QTRY_COMPARE(button(&box, "cancelpushButton")->text(), "Cancel");
        QCOMPARE(button(&box, "okpushButton")->text(), "Install");
        QCOMPARE(button(&box, "okpushButton")->shortcut(), QKeySequence(Qt::Key_Return));
        QCOMPARE(button(&box, "cancelpushButton")->shortcut(), QKeySequence(Qt::Key_Escape));
        QCOMPARE(button(&box, "Recovery")->shortcut(), QKeySequence(Qt::Key_Return));
        QCOMPARE(box.text(), "text");
        qApp->removeTranslator(&english);
        QTRY_COMPARE(button(&box, "cancelpushButton")->text(), QString("取消"));
    }

    void parentDeletedWhileWaiting()
    {
        auto* parent = new QWidget;
        parent->show();
        whenOpen([parent](messageBox&) { delete parent; });
        QCOMPARE(messageBox::ask("question", parent), 0);

        parent = new QWidget;
        parent->show();
        whenOpen([parent](messageBox& box) {
            box.findChild<Inputui*>("input")->setText("typed");
            delete parent;
        });
        QCOMPARE(promptText("", "prompt", parent), QString());
    }

    void noticesDoNotWait()
    {
        QWidget window;
        window.resize(700, 400);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QList<QPointer<messageBox>> boxes;
        for (const char* text : {"one", "two", "three", "four"}) {
            boxes.append(messageBox::notify(text, &window));
            QVERIFY(boxes.last()->isVisible());
            QVERIFY(!boxes.last()->isModal());
        }
        for (int later = 1; later < boxes.size(); ++later)
            for (int earlier = 0; earlier < later; ++earlier)
                QVERIFY((boxes[later]->pos() - boxes[earlier]->pos()).manhattanLength() > 20);
        // A closed one is gone, and its place is used again.
        const QPoint place = boxes[1]->pos();
        QTest::mouseClick(button(boxes[1], "okpushButton"), Qt::LeftButton);
        QTRY_VERIFY(!boxes[1]);
        boxes[1] = messageBox::notify("five", nullptr);
        boxes[1]->close();
        QTRY_VERIFY(!boxes[1]);
        boxes[1] = messageBox::notify("six", &window);
        QCOMPARE(boxes[1]->pos(), place);

        // More than the screen has room for stay on it.
        const QRect screen = window.screen()->availableGeometry();
        for (int count = 0; count < 40; ++count) {
            boxes.append(messageBox::notify("more", &window));
            QVERIFY(screen.contains(boxes.last()->frameGeometry()));
        }
        for (const QPointer<messageBox>& box : boxes)
            box->close();
        for (const QPointer<messageBox>& box : boxes)
            QTRY_VERIFY(!box);
    }

    void noticeDoesNotHideAQuestion()
    {
        QPointer<messageBox> notice;
        whenOpen([&notice](messageBox& question) {
            notice = messageBox::notify("notice", nullptr);
            QVERIFY(notice->pos() != question.pos());
            press(&question, Qt::Key_Return);
        });
        QCOMPARE(messageBox::ask("question", nullptr), 1);
        QVERIFY(notice && notice->isVisible());
        QTest::mouseClick(button(notice, "okpushButton"), Qt::LeftButton);
        QTRY_VERIFY(!notice);
    }

    /// There is nothing to decide.
    void noticeHasOneButton()
    {
        for (const int key : {Qt::Key_Escape, Qt::Key_Return}) {
            whenOpen([key](messageBox& notice) {
                QVERIFY(!button(&notice, "cancelpushButton")->isVisible());
                QVERIFY(button(&notice, "okpushButton")->hasFocus());
                press(&notice, Qt::Key(key));
            });
            messageBox::tell("notice", nullptr);
        }
    }

    void promptAnswers_data()
    {
        columns<int, int, QString>("key", "modifiers", "answer");
        const QString typed = "rtsp://h/<b>\n live ";
        row("return", int(Qt::Key_Return), int(Qt::NoModifier), typed);
        row("enter", int(Qt::Key_Enter), int(Qt::KeypadModifier), typed);
        row("control return", int(Qt::Key_Return), int(Qt::ControlModifier), typed);
        row("ok by tab", int(Qt::Key_Tab), int(Qt::NoModifier), typed);
        row("escape", int(Qt::Key_Escape), int(Qt::NoModifier), QString());
    }
    void promptAnswers()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, answer);
        QPointer<messageBox> box;
        whenOpen([&](messageBox& open) {
            box = &open;
            QCOMPARE(open.windowTitle(), "title");
            QVERIFY(open.findChild<QWidget*>("m_tipContent")->isHidden());
            QVERIFY(open.findChild<QLabel*>("label")->isHidden());
            QTextEdit* edit = open.findChild<Inputui*>("input")->contentEdit();
            QVERIFY(edit->hasFocus());
            QCOMPARE(edit->placeholderText(), "prompt");
            QTest::keyClicks(edit, "rtsp://h/<b>");
            press(&open, Qt::Key_Return, Qt::ShiftModifier);
            QTest::keyClicks(edit, " live ");
            press(&open, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
            if (key == Qt::Key_Tab) {
                QVERIFY(button(&open, "cancelpushButton")->hasFocus());
                press(&open, Qt::Key_Tab);
                press(&open, Qt::Key_Space);
            }
        });
        QCOMPARE(promptText("title", "prompt"), answer);
        QVERIFY(!box);
    }

private:
    /// Has `act` answer the box that is going to wait, once it has the keyboard.
    void whenOpen(const std::function<void(messageBox&)>& act)
    {
        m_answerer.reset();
        m_answerer = std::make_unique<DialogAnswerer>();
        m_answerer->expect<messageBox>(act);
    }

    std::unique_ptr<DialogAnswerer> m_answerer;
};

QTEST_MAIN(TestMessageBox)
#include "tst_message_box.moc"
