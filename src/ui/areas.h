// SPDX-License-Identifier: MIT
#pragma once

#include "ui_configuration_area.h"
#include "ui_control_area.h"
#include "ui_device_area.h"
#include "ui_info_area.h"
#include "ui_monitor_area.h"
#include "ui_storage_area.h"

#include <QEvent>
#include <QWidget>

/// One area of the window: a form of its own that labels itself again when the language changes.
template <class Form> class Area : public QWidget
{
public:
    explicit Area(QWidget* parent = nullptr) : QWidget(parent)
    {
        setAttribute(Qt::WA_StyledBackground);
        ui.setupUi(this);
    }

    void retranslate() { ui.retranslateUi(this); }

    Form ui;

protected:
    void changeEvent(QEvent* event) override
    {
        if (event->type() == QEvent::LanguageChange)
            retranslate();
        QWidget::changeEvent(event);
    }
};

using DeviceArea = Area<Ui::DeviceArea>;
using InfoArea = Area<Ui::InfoArea>;
using MonitorArea = Area<Ui::MonitorArea>;
using StorageArea = Area<Ui::StorageArea>;
using ConfigurationArea = Area<Ui::ConfigurationArea>;
using ControlArea = Area<Ui::ControlArea>;
