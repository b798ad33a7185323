// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "widgets/input_ui.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStringListModel>
#include <QTextEdit>
#include <memory>

class TestInputui : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_panel = std::make_unique<Inputui>();
        m_title = m_panel->findChild<QLineEdit*>("titleEdit");
        m_content = m_panel->contentEdit();
        QVERIFY(m_title);
    }
    void cleanup() { m_panel.reset(); }

    void pagesKeepTheirTexts()
    {
        QCOMPARE(m_panel->currentIndex(), 0);
        m_panel->setText("one");
        m_panel->setMultiLine();
        QCOMPARE(m_panel->currentIndex(), 1);
        QCOMPARE(m_panel->text(), QString());
        m_panel->setText("two\nthree\n");
        QCOMPARE(m_panel->text(), "two\nthree\n");
        m_panel->setCurrentIndex(7);
        QCOMPARE(m_panel->currentIndex(), 1);
        m_panel->setCurrentIndex(0);
        QCOMPARE(m_panel->text(), "one");

        m_panel->show();
        const QList<QLabel*> labels = m_panel->findChildren<QLabel*>();
        QCOMPARE(labels.size(), 3);
        for (const QLabel* label : labels)
            QVERIFY2(label->isHidden(), qPrintable(label->objectName()));
    }

    void markupStaysText()
    {
        const QString markup = "<b>rtsp</b>://host/?a=1&amp;b";
        for (int page : {0, 1}) {
            m_panel->setCurrentIndex(page);
            m_panel->setText(markup);
            QCOMPARE(m_panel->text(), markup);
        }
    }

    void signalsOfTheSingleLine()
    {
        QSignalSpy changed(m_panel.get(), &Inputui::textChanged);
        QSignalSpy entered(m_panel.get(), &Inputui::returnPressed);
        QTest::keyClicks(m_title, "ab");
        QTest::keyClick(m_title, Qt::Key_Return);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.last().first().toString(), "ab");
        QCOMPARE(entered.count(), 1);
    }

    void placeholders()
    {
        const QString usual = QString::fromUtf8("请输入");
        QCOMPARE(m_title->placeholderText(), usual);
        QCOMPARE(m_content->placeholderText(), usual);

        m_title->setAlignment(Qt::AlignRight);
        m_content->setAlignment(Qt::AlignRight);
        m_panel->setMultiLine();
        m_panel->setPlaceholderText("address");
        QCOMPARE(m_content->placeholderText(), "address");
        QCOMPARE(m_title->placeholderText(), usual);
        QVERIFY(m_title->alignment() & Qt::AlignRight);

        m_panel->setPlaceholderText("");
        QVERIFY(m_title->alignment() & Qt::AlignLeft);
        QVERIFY(m_content->alignment() & Qt::AlignLeft);

        QEvent languageChange(QEvent::LanguageChange);
        QCoreApplication::sendEvent(m_panel.get(), &languageChange);
        QCOMPARE(m_content->placeholderText(), usual);

        // A style sheet's text colour must not make the placeholder look like typed text.
        m_panel->setStyleSheet("color: #333333;");
        m_panel->show();
        QCOMPARE(m_content->palette().color(QPalette::Text), QColor("#333333"));
        QVERIFY(m_content->palette().color(QPalette::PlaceholderText).alphaF() < 0.8);
    }

    void oneLineIsNoTallerThanItsField()
    {
        QCOMPARE(m_panel->sizeHint().height(), m_title->sizeHint().height());
        m_panel->setMultiLine();
        QVERIFY(m_panel->sizeHint().height() > 3 * m_title->sizeHint().height());
    }

    void clickListsSuggestions_data()
    {
        columns<QStringList, bool>("list", "shown");
        row("suggestions", QStringList({"KORA-1", "KORA-2", "other"}), true);
        row("none", QStringList(), false);
    }
    void clickListsSuggestions()
    {
        const auto [list, shown] = cells<QStringList, bool>();
        QStringListModel model(list);
        QCompleter completer(&model);
        m_panel->setCompleter(&completer);
        m_panel->setText("KORA");
        m_panel->show();
        m_panel->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_panel.get()));
        QTest::mouseClick(m_title, Qt::LeftButton);
        QCOMPARE(completer.popup()->isVisible(), shown);
        if (shown) {
            QCOMPARE(completer.completionCount(), list.size());
            completer.popup()->hide();
        }
        m_panel->setCompleter(nullptr);
        QTest::mouseClick(m_title, Qt::LeftButton);
        QVERIFY(!completer.popup()->isVisible());
    }

private:
    std::unique_ptr<Inputui> m_panel;
    QLineEdit* m_title = nullptr;
    QTextEdit* m_content = nullptr;
};

QTEST_MAIN(TestInputui)
#include "tst_input_ui.moc"
