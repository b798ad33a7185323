// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>

class CommandReplies;

/// Makes the selected box push or serve its live stream, or stop.
class LiveControl : public QObject
{
    Q_OBJECT

public:
    explicit LiveControl(const Hub& hub);

    /// Takes the replies of "stream_on" and "stream_off".
    void registerReplies(CommandReplies& replies);
    void ask();

private:
    void handleStarted(const QVariantMap& reply);

    const Hub m_hub;
};
