// SPDX-License-Identifier: MIT
#pragma once

namespace sim
{

/// Allows this process as many open files and sockets as the system lets it have, and says how
/// many. A box listens on four ports; a subnet full of them passes what is usual.
int allowOpenFiles();

} // namespace sim
