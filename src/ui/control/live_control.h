// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>

class BoxReply;

/// Makes the selected box push or serve its live stream, or stop.
class LiveControl : public QObject
{
    Q_OBJECT

public:
    explicit LiveControl(const Hub& hub);

    /// Asks for an address, then starts or stops the stream. Blocks, serving events.
    void ask();

private:
    void handleStarted(const BoxReply& reply);

    const Hub m_hub;
};
