// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/faults.h"
#include "simulator/http_server.h"

namespace sim
{

/// Makes of a finished reply what no honest server would send, as the faults "huge-head",
/// "endless", "packed" and "chatter" want it.
void makeHostile(FaultList* faults, const QStringList& tags, HttpReply* reply);

} // namespace sim
