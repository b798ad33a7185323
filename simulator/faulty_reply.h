// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/faults.h"
#include "simulator/http_server.h"

#include <QJsonObject>

namespace sim
{

/// Holds a request up as "slow" and "silent" want it. False when no answer is to be given: the
/// box is silent, or the client has gone.
bool waitAsFaultsWant(FaultList* faults, const QStringList& tags, HttpWire* wire);

/// Changes a parameter reply as the faults of "value" want it.
void spoilValue(FaultList* faults, const QStringList& tags, QJsonObject* reply);

/// Changes a finished reply as the faults of the wire want it.
void spoilReply(FaultList* faults, const QStringList& tags, HttpReply* reply);

/// Holds the answer to a write or action back as "late" and "unanswered" want it. What the action
/// sets going begins before that, so that a box may be at work, or away, when its answer is due.
void holdReply(FaultList* faults, const QStringList& tags, HttpWire* wire, HttpReply* reply);

/// The status word when writes or actions are to fail, empty otherwise. `usual` is the word of a
/// fault that brings none of its own.
QString failureWord(FaultList* faults, const QStringList& tags, const QString& usual);

/// A reply with this object as body.
HttpReply jsonReply(const QJsonObject& object);
/// A reply that closes the connection without a word.
HttpReply cutReply();

} // namespace sim
