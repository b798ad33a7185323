// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

/// The read-only text of a message. It is never read as markup, wraps even inside a word that is
/// wider than the line, scrolls once it is taller than its room, and can be selected and copied by
/// mouse and keyboard. It is never taller than its text, so a layout centres it.
class MessageText : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit MessageText(QWidget* parent = nullptr);

    void setText(const QString& text);
    QString text() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// The height of the whole text at the present width, in pixels, or `limit` if it is more.
    int textHeight(int limit) const;
    void fitHeight();
};
