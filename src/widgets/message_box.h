// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QString>
#include <memory>

namespace Ui
{
class messageBox;
}

/// The program's dialog for questions, notices and short text input. GUI thread only.
///
/// Its text may come from outside: it is shown as it stands, never as markup, wraps, scrolls when
/// long and can be copied.
///
/// Keys: Return and Enter press the button that has the focus and OK from anywhere else; the focus
/// starts on OK. In the input panel they confirm as well, and Shift+Return starts a new line.
/// Escape cancels.
///
/// A box that lives on the stack must not outlast its parent. Code that waits for an answer while
/// its window may go away uses ask(), which then answers Cancelled.
class messageBox : public QDialog
{
    Q_OBJECT

public:
    /// What exec() returns. "Recovery" is OK, too, for callers that only test for non-zero.
    enum Answer { Cancelled = 0, Confirmed = 1, ConfirmedKeepConfiguration = 2 };

    explicit messageBox(QWidget* parent = nullptr);
    explicit messageBox(const QString& text, QWidget* parent = nullptr);
    ~messageBox() override;

    /// Asks and waits, serving events meanwhile. The parent may be null, and may be deleted during
    /// the wait. `okText` and `cancelText` rename the buttons as setButtonText() does.
    static int ask(const QString& text, QWidget* parent, const QString& okText = QString(),
                   const QString& cancelText = QString());
    /// Says something and waits until it has been read, as ask() does: there is only OK.
    static void tell(const QString& text, QWidget* parent);
    /// As ask(), with the third button "OK and keep the configuration".
    static int askWithRecovery(const QString& text, QWidget* parent);
    /// Shows a notice, with OK only, without waiting and without taking the keyboard from what the
    /// user is typing in. The box deletes itself when it is closed; boxes shown at the same time
    /// are set off from each other. The parent may be null.
    static messageBox* notify(const QString& text, QWidget* parent);

    void setText(const QString& text);
    QString text() const;
    /// Renames OK and Cancel; an empty text means the usual one. The names outlast a language
    /// change.
    void setButtonText(const QString& okText, const QString& cancelText);
    /// A notice has no Cancel: there is nothing to decide. Escape closes it all the same.
    void setNotice();
    /// Shows or hides "OK and keep the configuration"; hidden at first.
    void setRecoveryVisible(bool visible);

    /// Turns the box into a prompt: the input panel, empty and focused, instead of text and icon.
    void showInput();
    /// The text in the input panel, as typed, with its line breaks.
    QString inputText() const;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void on_okpushButton_clicked();
    void on_cancelpushButton_clicked();
    void on_Recovery_clicked();

private:
    void applyButtonText();

    std::unique_ptr<Ui::messageBox> m_ui;
    QString m_okText;
    QString m_cancelText;
};

/// Asks for a text in a multi-line field that shows `prompt` while it is empty. Returns the text as
/// typed, empty when the user cancels or the parent is deleted meanwhile. Blocks, serving events.
QString promptText(const QString& title, const QString& prompt, QWidget* parent = nullptr);
