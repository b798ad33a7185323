// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "ui/hub/orders.h"

#include <QObject>

class Busy;
class QAbstractButton;
class QCheckBox;
class Item;
namespace Ui
{
class ControlArea;
}

/// The encoder's mode (full bandwidth, HX2, HX3) and its codec (H.264, H.265).
class EncoderControl : public QObject
{
    Q_OBJECT

public:
    /// `busy` is that of the control area, shared by everything in it.
    EncoderControl(const Hub& hub, Ui::ControlArea& area, Busy& busy);

    // Each is told the new state of its button, sends what makes the box follow and says when that
    // failed. They block, serving events.
    void setHb(bool on);
    void setHx2(bool on);
    void setHx3(bool on);
    void setH264(bool on);
    void setH265(bool on);

    /// True while the encoder runs in any mode.
    bool isEncoding() const;
    /// The box has told its mode, or that it has none.
    bool isModeKnown() const;

private:
    class Commands;

    const Item* boxToCommand(QAbstractButton* clicked) const;
    void setHx(QCheckBox* button, QCheckBox* other, int h264Format, bool on,
               const QString& failure);
    void setCodec(int codec);
    SequenceResult run(const Commands& list);
    void switchMode(QCheckBox* button, const Commands& list, const QString& failure);

    const Hub m_hub;
    Ui::ControlArea& m_area;
    Busy& m_busy;
};
