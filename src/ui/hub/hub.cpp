// SPDX-License-Identifier: MIT
#include "ui/hub/hub.h"

#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/hub/hub_state.h"
#include "widgets/message_box.h"

Item* Hub::findSelectedDevice() const
{
    return devices.model().find(state.deviceIp());
}

Item* Hub::selectedDevice() const
{
    Item* device = findSelectedDevice();
    if (!device)
        messageBox::tell(tr("请您在设备列表中选择要操作的设备!"), window);
    return device;
}

Item* Hub::freeDevice() const
{
    Item* device = selectedDevice();
    return device && isFree(*device) ? device : nullptr;
}

bool Hub::isFree(const Item& device) const
{
    if (!device.isOwned())
        return true;
    messageBox::tell(
        tr("KORA %1 正在升级固件或恢复设置，请等待完成后再操作。").arg(device.address()), window);
    return false;
}
