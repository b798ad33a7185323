// SPDX-License-Identifier: MIT
#include "ui/hub/busy.h"

#include "ui/hub/availability.h"

#include <QApplication>

Busy::Busy(QWidget* indicator, QVector<QWidget*> widgets)
    : m_indicator(indicator), m_widgets(std::move(widgets))
{
    m_indicator->hide();
}

void Busy::setRunning(bool running)
{
    m_running = running;
    // Disabling a widget takes its focus away for good unless it is given back.
    if (running)
        m_focus = QApplication::focusWidget();
    for (QWidget* widget : m_widgets) {
        if (running)
            Availability::hinder(*widget, "busy", QString());
        else
            Availability::release(*widget, "busy");
    }
    m_indicator->setVisible(running);
    if (!running && m_focus)
        m_focus->setFocus();
}

Busy::Run::Run(Busy& busy) : m_busy(busy.isRunning() ? nullptr : &busy)
{
    if (m_busy)
        m_busy->setRunning(true);
}

Busy::Run::~Run()
{
    end();
}

void Busy::Run::end()
{
    if (m_busy)
        m_busy->setRunning(false);
    m_busy = nullptr;
}
