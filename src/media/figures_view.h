// SPDX-License-Identifier: MIT
#pragma once

#include "media/picture_figures.h"

#include <QElapsedTimer>
#include <QVector>
#include <QWidget>

class LevelMeter;
class QLabel;

/// Shows over the picture area what is known of the source: figures in rows, then a meter for each
/// channel of its sound. Takes no mouse events; hidden until show().
class FiguresView : public QWidget
{
    Q_OBJECT

public:
    /// `area` is what it lies over, in the upper left corner; it follows that widget's size and
    /// makes way for `other`, which lies there too.
    FiguresView(QWidget* area, QWidget* other);

    /// Meters follow at once, words so slowly that they can be read.
    void setFigures(const PictureFigures& figures);

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Row {
        QLabel* name;
        QLabel* value;
    };

    QStringList values() const;
    QString decoder() const;
    void retranslate();
    void showWords();
    void place();

    QWidget* m_other;
    PictureFigures m_figures;
    QVector<Row> m_rows;
    LevelMeter* m_meter;
    QElapsedTimer m_sinceWords;
};
