// SPDX-License-Identifier: MIT
#include "ui/devices/info_hint.h"

#include "device/tree_view.h"
#include "ui/hub/hub_state.h"

InfoHint::InfoHint(const Hub& hub, TreeView* list) : ListHint(list), m_hub(hub)
{
    setObjectName(QStringLiteral("info_hint"));
    refresh();
}

QString InfoHint::words() const
{
    return m_hub.state.deviceIp().isEmpty() ? tr("选择一个设备，这里显示它的信息")
                                            : tr("正在读取…");
}
