// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>

class Busy;
class EncoderControl;
struct BoxId;
enum class SequenceResult;

/// Makes the selected box decode an NDI source that the operator picks, or stop.
class DecodeControl : public QObject
{
    Q_OBJECT

public:
    /// `busy` is that of the control area, shared by everything in it.
    DecodeControl(const Hub& hub, const EncoderControl& encoder, Busy& busy);

    /// Asks for a source, then starts or stops decoding it. Blocks, serving events.
    void ask();

private:
    void tellSuccess(const QString& command, const char* text);
    SequenceResult run(const BoxId& box, const QStringList& commands);
    void start(const BoxId& box, bool encoding, const QString& source);
    void stop(const BoxId& box, bool encoding);
    void tell(const BoxId& box, SequenceResult result, const QString& success,
              const QString& failure);

    const Hub m_hub;
    const EncoderControl& m_encoder;
    Busy& m_busy;
};
