// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

/// A label of one line with "…" in it where it has no room for more. Its text is plain, never
/// markup; the tooltip shows it whole while it does not fit.
class ElidedLabel : public QLabel
{
    Q_OBJECT
    /// Each line of the text stands for itself; else the ends of lines are blanks.
    Q_PROPERTY(bool keepsLines MEMBER m_keepsLines)
    /// What says the most stands first: only the end goes; else the middle.
    Q_PROPERTY(bool keepsStart MEMBER m_keepsStart)

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText() const;

    bool m_keepsLines = false;
    bool m_keepsStart = false;
};
