// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>

class ElidedLabel;

/// A line at the lower edge of the picture area that goes by itself after some seconds. Takes no
/// mouse events.
class PictureNotice : public QWidget
{
    Q_OBJECT

public:
    /// `area` is what it lies over; it follows that widget's size.
    explicit PictureNotice(QWidget* area);

    /// Shows `text`, which is plain, in place of the one before.
    void tell(const QString& text, bool isBad);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    ElidedLabel* m_text;
    QTimer m_end;
};
