// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "widgets/ip_address.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <memory>

/// Types into the editor as a user does: every key goes to whatever has the focus then.
class TestIPAddress : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        auto* layout = new QVBoxLayout(m_window.get());
        m_editor = new IPAddress;
        m_editor->setMinimumHeight(30);
        m_other = new QLineEdit;
        layout->addWidget(m_editor);
        layout->addWidget(m_other);
        m_fields.clear();
        for (const char* name : {"txtIP1", "txtIP2", "txtIP3", "txtIP4"}) {
            m_fields.append(m_editor->findChild<QLineEdit*>(name));
            QVERIFY2(m_fields.last(), name);
        }
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_editor->setFocus();
        QCOMPARE(focused(), 1);
    }
    void cleanup() { m_window.reset(); }

    void typing_data()
    {
        columns<QString, QString, int>("keys", "texts", "field");
        row("three digits move on", "192", "192|||", 2);
        row("a dot moves on", "99.", "99|||", 2);
        row("a dot in an empty field does not", ".", "|||", 1);
        row("a dot after the third digit is one move", "192.1", "192|1||", 2);
        row("and two dots are two", "192.1.", "192|1||", 3);
        row("256 is refused", "256", "25|||", 1);
        row("255 is the largest", "255", "255|||", 2);
        row("199 and 200", "199200", "199|200||", 3);
        row("letters are refused", "1a2-3", "123|||", 2);
        row("a whole address", "192.168.1.88", "192|168|1|88", 4);
        row("without the dots", "192168100255", "192|168|100|255", 4);
        row("the last field has no next", "1.2.3.4.", "1|2|3|4", 4);
    }
    void typing()
    {
        const auto [keys, texts, field] = cells<QString, QString, int>();
        type(keys);
        QCOMPARE(this->texts().join('|'), texts);
        QCOMPARE(focused(), field);
    }

    void backspaceMovesBackWithoutDeleting()
    {
        type("10.20.");
        QCOMPARE(focused(), 3);
        press(Qt::Key_Backspace);
        QCOMPARE(focused(), 2);
        QCOMPARE(texts().join('|'), "10|20||");
        // From there it deletes as usual, one digit at a time.
        press(Qt::Key_Backspace);
        QCOMPARE(texts().join('|'), "10|2||");
        press(Qt::Key_Backspace);
        press(Qt::Key_Backspace);
        QCOMPARE(focused(), 1);
        QCOMPARE(texts().join('|'), "10|||");

        m_editor->clear();
        press(Qt::Key_Backspace);
        QCOMPARE(focused(), 1);
    }

    void arrowsCrossTheEnds()
    {
        m_editor->setIP("10.20.30.40");
        m_fields[1]->setFocus();
        m_fields[1]->setCursorPosition(1);
        press(Qt::Key_Right);
        QCOMPARE(focused(), 2);
        press(Qt::Key_Right);
        QCOMPARE(focused(), 3);
        QCOMPARE(m_fields[2]->cursorPosition(), 0);
        press(Qt::Key_Left);
        QCOMPARE(focused(), 2);
        QCOMPARE(m_fields[1]->cursorPosition(), 2);
        QCOMPARE(texts().join('|'), "10|20|30|40");
    }

    void typingReplacesAnOldAddress()
    {
        m_editor->setIP("10.20.30.40");
        m_fields[0]->selectAll();
        type("192.168.2.7");
        QCOMPARE(m_editor->getIP(), "192.168.2.7");

        // A dot that follows the mouse is a dot again.
        m_fields[0]->setFocus();
        m_fields[0]->selectAll();
        type("100");
        QCOMPARE(focused(), 2);
        QTest::mouseClick(m_fields[1], Qt::LeftButton);
        type(".");
        QCOMPARE(focused(), 3);
    }

    void pasting_data()
    {
        columns<QString, QString, int>("clipboard", "texts", "field");
        row("an address", "172.16.0.9", "172|16|0|9", 4);
        row("with blanks", " \t172.16.0.9\r\n", "172|16|0|9", 4);
        row("with leading zeros", "010.001.000.099", "10|1|0|99", 4);
        row("a number", "77", "1|2|77|4", 3);
        row("too large", "1.2.3.256", "1|2|3|4", 3);
        row("five parts", "1.2.3.4.5", "1|2|3|4", 3);
        row("a word", "camera", "1|2|3|4", 3);
    }
    void pasting()
    {
        const auto [clipboard, texts, field] = cells<QString, QString, int>();
        m_editor->setIP("1.2.3.4");
        m_fields[2]->setFocus();
        m_fields[2]->selectAll();
        QGuiApplication::clipboard()->setText(clipboard);
        QTest::keyClick(m_window->windowHandle(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(this->texts().join('|'), texts);
        QCOMPARE(focused(), field);
        QCOMPARE(m_editor->getIP(), this->texts().join('.'));
    }

    void validity_data()
    {
        columns<QString, bool>("address", "valid");
        row("usual", "192.168.1.88", true);
        row("mask", "255.255.255.0", true);
        row("zeros", "0.0.0.0", true);
        row("empty", "", false);
        row("three parts", "1.2.3", false);
        row("five parts", "1.2.3.4.5", false);
        row("too large", "1.2.3.256", false);
        row("empty part", "10.1..5", false);
        row("blank", " 1.2.3.4", false);
        row("line end", "1.2.3.4\n", false);
        row("other digits", QString::fromUtf8("１.2.3.4"), false);
        row("sign", "1.2.3.-4", false);
    }
    void validity()
    {
        const auto [address, valid] = cells<QString, bool>();
        m_editor->setIP("9.8.7.6");
        m_editor->setIP(address);
        QCOMPARE(m_editor->getIP(), valid ? address : QString("9.8.7.6"));
        QCOMPARE(texts().join('.'), m_editor->getIP());
    }

    void enterReportsOnlyAValidAddress()
    {
        QSignalSpy entered(m_editor, &IPAddress::returnPressed);
        type("10.1");
        press(Qt::Key_Return);
        QCOMPARE(entered.count(), 0);

        m_fields[3]->setText("5");
        QCOMPARE(m_editor->getIP(), QString());
        type(".3");
        QCOMPARE(m_editor->getIP(), "10.1.3.5");
        press(Qt::Key_Return);
        QCOMPARE(entered.count(), 1);
        m_fields[0]->setFocus();
        press(Qt::Key_Enter);
        QCOMPARE(entered.count(), 2);
    }

    void setIpLeavesTheFocusAlone()
    {
        m_other->setFocus();
        m_editor->setIP("192.168.100.200");
        QVERIFY(m_other->hasFocus());

        m_fields[0]->setFocus();
        m_editor->setIP("193.169.101.201");
        QCOMPARE(focused(), 1);
        // To clear it is to begin anew.
        m_other->setFocus();
        m_editor->clear();
        QCOMPARE(texts().join('|'), "|||");
        QCOMPARE(focused(), 1);
        QCOMPARE(m_editor->getIP(), QString());
        m_editor->setIP("192.168.100.200");
        QCOMPARE(m_editor->getIP(), "192.168.100.200");
    }

    void laterLooksHaveNoEffect()
    {
        const auto* frame = m_editor->findChild<QFrame*>("frameIP");
        const QString built = frame->styleSheet();
        QVERIFY(built.startsWith("QFrame#frameIP{border:1px solid #00000000;border-radius:3px;}"));
        m_editor->setBgColor("#ff0000");
        m_editor->setBorderColor("#00ff00");
        m_editor->setBorderRadius(9);
        QCOMPARE(frame->styleSheet(), built);
    }

private:
    void type(const QString& keys)
    {
        for (const QChar key : keys)
            QTest::keyClick(m_window->windowHandle(), key.toLatin1());
    }

    void press(Qt::Key key) { QTest::keyClick(m_window->windowHandle(), key); }

    /// The number of the field with the focus, 1 to 4, else 0.
    int focused() const
    {
        for (QLineEdit* field : m_fields)
            if (field->hasFocus())
                return m_fields.indexOf(field) + 1;
        return 0;
    }

    QStringList texts() const
    {
        QStringList all;
        for (const QLineEdit* field : m_fields)
            all.append(field->text());
        return all;
    }

    std::unique_ptr<QWidget> m_window;
    IPAddress* m_editor = nullptr;
    QLineEdit* m_other = nullptr;
    QList<QLineEdit*> m_fields;
};
QTEST_MAIN(TestIPAddress)
#include "tst_ip_address.moc"
