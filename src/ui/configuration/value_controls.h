// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVector>

class QWidget;
namespace Ui
{
class ConfigurationArea;
class ControlArea;
} // namespace Ui

/// The numeric controls of the panels, whose values never change by scrolling over them.
class ValueControls
{
public:
    ValueControls(Ui::ConfigurationArea& config, Ui::ControlArea& control);

    QVector<QWidget*> wheelControls() const { return m_controls; }
    /// For the event filter: true for a wheel event on one of the controls, which is then ignored
    /// so that the panel behind scrolls instead.
    bool swallows(QObject* watched, QEvent* event) const;

private:
    QVector<QWidget*> m_controls;
};
