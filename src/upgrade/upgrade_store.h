// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

struct UpgradeSession;

/// Where batches are kept beyond the end of the program.
class UpgradeStore
{
public:
    UpgradeStore() = default;
    virtual ~UpgradeStore() = default;
    UpgradeStore(const UpgradeStore&) = delete;
    UpgradeStore& operator=(const UpgradeStore&) = delete;

    /// Called once, later: whether the batch is safe.
    using Saved = std::function<void(bool saved)>;

    /// Keeps the batch as it is now; as one to go on with when `open`.
    virtual void save(const UpgradeSession& session, bool open, Saved saved) = 0;
};
