// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QAbstractItemView;
class QLabel;

/// Says in the middle of an empty list why it is empty. Hidden while it is not; takes no mouse
/// events; the list owns it.
class ListHint : public QWidget
{
    Q_OBJECT

public:
    explicit ListHint(QAbstractItemView* list);

    /// What is true now, in the language of now.
    virtual void refresh();

protected:
    /// Whether the list is empty for who looks at it.
    virtual bool isListEmpty() const;
    /// One line above the words, brighter than they are; empty for none.
    virtual QString title() const { return {}; }
    /// Empty for none.
    virtual QString words() const = 0;

    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QAbstractItemView* const m_list;
    QLabel* const m_title;
    QLabel* const m_words;
};
