// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/// Runs `work` on a thread of its own and serves events, user input excepted, until it is done: for
/// file work too long for the GUI thread. `work` touches nothing that the GUI thread uses
/// meanwhile.
void runInBackground(const std::function<void()>& work);
