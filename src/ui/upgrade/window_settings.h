// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub_state.h"
#include "upgrade/kept_settings.h"

/// Settings of boxes as they are kept in the window's properties.
class WindowSettings final : public KeptSettings
{
public:
    explicit WindowSettings(HubState& state) : m_state(state) {}

    QVariantMap values(const QString& mac) const override
    {
        return m_state.savedConfiguration(mac);
    }
    void setValues(const QString& mac, const QVariantMap& values) override
    {
        m_state.setSavedConfiguration(mac, values);
    }

protected:
    QStringList waiting() const override { return m_state.needRestore(); }
    void setWaiting(const QStringList& list) override { m_state.setNeedRestore(list); }

private:
    HubState& m_state;
};
