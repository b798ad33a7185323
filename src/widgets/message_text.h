// SPDX-License-Identifier: MIT
#pragma once

#include <QTextEdit>

/// The read-only text of a message. It is never read as markup, wraps even inside a word that is
/// wider than the line, scrolls once it is taller than its room, and can be selected and copied by
/// mouse and keyboard. It is never taller than its text, so a layout centres it.
class MessageText : public QTextEdit
{
    Q_OBJECT

public:
    explicit MessageText(QWidget* parent = nullptr);

    /// Hides the base class's setText(), which guesses at markup.
    void setText(const QString& text);
    QString text() const;

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// No taller than the text, so that a layout centres a short one.
    void fitHeight();
};
