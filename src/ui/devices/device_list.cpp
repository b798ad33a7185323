// SPDX-License-Identifier: MIT
#include "ui/devices/device_list.h"

#include "device/device_registry.h"
#include "device/tree_view.h"
#include "ui/hub/exchange.h"
#include "ui_device_area.h"

DeviceList::DeviceList(const Hub& hub, Ui::DeviceArea& area) : QObject(nullptr), m_area(area)
{
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(&m_refresh, &QTimer::timeout, area.deviceView, &TreeView::refresh);
    connect(&hub.devices, &DeviceRegistry::changed, &m_refresh, QOverload<>::of(&QTimer::start));
    DeviceRegistry& devices = hub.devices;
    hub.exchange.onResult(DeviceRegistry::nameProbe(), [&devices](const HttpResult& result) {
        devices.handleDeviceName(result.deviceIp, result.value.toString());
    });
    hub.exchange.onResult(DeviceRegistry::pageProbe(), [&devices](const HttpResult& result) {
        devices.handleWebPage(result.deviceIp, result.body);
    });
}

void DeviceList::setExpanded(bool expanded)
{
    if (expanded)
        m_area.deviceView->expandAll();
    else
        m_area.deviceView->collapseAll();
    m_area.collapse->setVisible(expanded);
    m_area.expand->setVisible(!expanded);
}

void DeviceList::repaint()
{
    m_area.deviceView->viewport()->update();
}
