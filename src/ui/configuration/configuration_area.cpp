// SPDX-License-Identifier: MIT
#include "ui/configuration/configuration_area.h"

#include "device/item.h"
#include "widgets/placeholder.h"

ConfigurationArea::ConfigurationArea(QWidget* parent) : Area(parent)
{
    constexpr int iconSize = 16;
    ui.config_warning->setPixmap(
        QIcon(QStringLiteral(":/spark/img/warning.svg")).pixmap(iconSize, iconSize));
    ui.config_warning->hide();
    keepPlaceholderDim(*ui.eParam_NTPServer);
    ui.eParam_IPAddress->setIP(QStringLiteral("192.168.1.88"));
    ui.eParam_NetMask->setIP(QStringLiteral("255.255.255.0"));
    ui.eParam_NDIName->setText(koraFamily());
    ui.eParam_NTPServer->setText(QStringLiteral("pool.ntp.org"));
}
