// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>

/// What a click on a row asks for. The value is also the code of the row's zone under the mouse.
enum class Action : int {
    None = 0,
    GroupExpanded = 14,
    GroupCollapsed = 15,
    Download = 42,
    RestartDevice = 49,
    RestartSoftware = 50,
    Delete = 51,
    NewFirmware = 54,
    Title = 56,
    Content = 57,
    Select = 58,
    PlayRecording = 59,
    Online = 60,
    Offline = 61,
    UpgradeTick = 65,
    LeadingIcon = 66,
};

Q_DECLARE_METATYPE(Action)

/// A click on a zone with such a code is reported as it is; on any other it selects the row.
constexpr bool isOwnAction(Action zone)
{
    return static_cast<int>(zone) <= 55;
}
