// SPDX-License-Identifier: MIT
#pragma once

#include <QTime>
#include <QWidget>

class ElidedLabel;
class QLabel;

/// Tells over the picture area what is, or is not, playing, so that nobody takes a picture that
/// stands still for a live one. Hidden while pictures come. Takes no mouse events.
class PictureState : public QWidget
{
    Q_OBJECT

public:
    enum class State { Idle, Opening, Playing, Silent, Ended, Failed, Stopped };

    /// `area` is what it lies over; it follows that widget's size.
    explicit PictureState(QWidget* area);

    State state() const { return m_state; }
    /// `url` is shown without its password; `since` is when the last picture came, for Silent.
    void show(State state, const QString& url, const QTime& since = {});
    /// Over a picture it keeps to the upper edge.
    void setOverPicture(bool over);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void retranslate();
    QString title() const;
    void place();

    State m_state = State::Idle;
    QString m_url;
    QTime m_since;
    bool m_overPicture = false;
    QLabel* m_title;
    ElidedLabel* m_detail;
};
