// SPDX-License-Identifier: MIT
#pragma once

#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

/// Types a path into a file dialog and confirms it.
inline void choosePath(QFileDialog& dialog, const QString& path)
{
    auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
    QVERIFY(name);
    name->setText(path);
    QTest::keyClick(name, Qt::Key_Return);
}

/// The operator in front of the dialogs and menus that the program waits in: answers each one that
/// comes up once, in the order in which they come, and remembers what the message boxes said.
class DialogAnswerer : public QObject
{
public:
    /// Presses `key` in every message box: Return confirms, Escape cancels.
    explicit DialogAnswerer(Qt::Key key = Qt::Key_Return)
    {
        setKey(key);
        start();
    }
    /// Clicks the button of this name in every message box, or OK where that is hidden.
    explicit DialogAnswerer(const char* button)
    {
        setButton(button);
        start();
    }
    ~DialogAnswerer() override { --count(); }

    void setKey(Qt::Key key)
    {
        m_always = inMessageBox([key](messageBox& box) { QTest::keyClick(&box, key); }, true);
    }
    void setButton(const QString& name)
    {
        m_always = inMessageBox(
            [name](messageBox& box) {
                auto* button = box.findChild<QAbstractButton*>(name);
                if (!button || button->isHidden())
                    button = box.findChild<QAbstractButton*>("okpushButton");
                button->click();
            },
            false);
    }

    /// Before anything else comes a dialog or menu of this type: `act` answers it, as soon as it is
    /// `ready`. Several wait for each other.
    template <class Popup>
    DialogAnswerer& expect(const std::function<void(Popup&)>& act,
                           const std::function<bool(Popup&)>& ready = {})
    {
        m_expected << Step{[ready](QWidget& popup) {
                               auto* expected = qobject_cast<Popup*>(&popup);
                               return expected && hasKeyboard(popup) &&
                                      (!ready || ready(*expected));
                           },
                           [act](QWidget& popup) { act(static_cast<Popup&>(popup)); }};
        return *this;
    }
    /// Everything that was expected has come.
    bool isDone() const { return m_expected.isEmpty(); }

    const QStringList& texts() const { return m_texts; }
    void clear() { m_texts.clear(); }

private:
    struct Step {
        std::function<bool(QWidget&)> ready;
        std::function<void(QWidget&)> act;
    };

    void start()
    {
        // Two would race for the same dialog.
        if (++count() > 1)
            qFatal("one answerer at a time");
        connect(&m_timer, &QTimer::timeout, this, [this] { look(); });
        m_timer.start(20);
    }
    static int& count()
    {
        static int answerers = 0;
        return answerers;
    }

    /// Keys reach a dialog only once it is the active window; a menu takes them by itself.
    static bool hasKeyboard(QWidget& popup)
    {
        if (popup.isVisible() && popup.windowType() != Qt::Popup && !popup.isActiveWindow())
            popup.activateWindow();
        return popup.isVisible() && (popup.windowType() == Qt::Popup || popup.isActiveWindow());
    }

    Step inMessageBox(const std::function<void(messageBox&)>& act, bool byKey)
    {
        return {[byKey](QWidget& popup) {
                    return qobject_cast<messageBox*>(&popup) && (!byKey || hasKeyboard(popup));
                },
                [this, act](QWidget& popup) {
                    auto& box = static_cast<messageBox&>(popup);
                    m_texts << box.text();
                    act(box);
                }};
    }

    void look()
    {
        QWidget* popup = QApplication::activePopupWidget();
        if (!popup)
            popup = QApplication::activeModalWidget();
        // A key presses its button for a moment before it counts.
        if (!popup || m_answered.contains(popup))
            return;
        const bool isExpected = !m_expected.isEmpty();
        const Step step = isExpected ? m_expected.first() : m_always;
        if (!step.ready || !step.ready(*popup))
            return;
        m_answered << popup;
        if (isExpected)
            m_expected.removeFirst();
        // Not from here: the answer may wait in the next dialog, and a timer that is being served
        // does not come again.
        const QPointer<QWidget> waiting(popup);
        QTimer::singleShot(0, this, [step, waiting] {
            if (waiting)
                step.act(*waiting);
        });
        QTimer::singleShot(patienceMs, this, [waiting] { giveUp(waiting); });
    }

    /// A dialog that its answer did not close would hold a failing test for ever.
    static void giveUp(QWidget* popup)
    {
        if (!popup || !popup->isVisible())
            return;
        qWarning("a dialog stays open: %s", popup->metaObject()->className());
        if (auto* dialog = qobject_cast<QDialog*>(popup))
            dialog->done(-1);
        else
            popup->close();
    }

    static constexpr int patienceMs = 20000;

    QTimer m_timer;
    Step m_always;
    QList<Step> m_expected;
    QList<QPointer<QWidget>> m_answered;
    QStringList m_texts;
};
