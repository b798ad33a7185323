// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QVector>
#include <QWidget>

/// One bar a channel, from SoundLevel::Floor to 0 dBFS: green, yellow from -18, red from -6. The
/// loudest of the last second stays marked.
class LevelMeter : public QWidget
{
    Q_OBJECT

public:
    explicit LevelMeter(QWidget* parent = nullptr);

    /// Peaks in dBFS, a channel each.
    void setLevels(const QVector<float>& levels);
    /// The mark of each channel, in dBFS.
    QVector<float> marks() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Mark {
        float level;
        qint64 since; // milliseconds of m_clock
    };

    QVector<float> m_levels;
    QVector<Mark> m_marks;
    QElapsedTimer m_clock;
};
