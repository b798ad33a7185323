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
    /// `url` is shown without its password; for Silent, `since` is when the last picture came, and
    /// `tries` which try to open the source again is under way, 0 for none.
    void show(State state, const QString& url, const QTime& since = {}, int tries = 0);
    int tries() const { return m_tries; }
    /// Over a picture it keeps to the upper edge.
    void setOverPicture(bool over);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void retranslate();
    QString title() const;
    QString detail() const;
    void place();

    State m_state = State::Idle;
    QString m_url;
    QTime m_since;
    int m_tries = 0;
    bool m_overPicture = false;
    QLabel* m_title;
    ElidedLabel* m_detail;
    QLabel* m_hint;
};
