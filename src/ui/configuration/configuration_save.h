// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/busy.h"
#include "ui/hub/hub.h"
#include "ui/hub/orders.h"

#include <QMap>
#include <QObject>

class ParameterPanel;
namespace Ui
{
class ConfigurationArea;
}

/// The save button: writes the configuration area to the selected box, parameter by parameter, and
/// makes the box apply it.
class ConfigurationSave : public QObject
{
    Q_OBJECT

public:
    ConfigurationSave(const Hub& hub, Ui::ConfigurationArea& area, ParameterPanel& panel);

    /// Saves what is known of the selected box's settings and what the operator changed, and says
    /// how it went. Blocks, serving events.
    void save();
    /// Why there is nothing to save, empty when there is.
    void setHindrance(const QString& why);

private:
    /// What the box last reported of its network settings.
    struct Network {
        QString dhcp;
        QString ip;
        QString mask;
    };

    QString objection(const QMap<QString, QString>& values, const Network& before) const;
    SequenceResult send(const BoxId& box, const QMap<QString, QString>& values,
                        const Network& before, QString& message);
    SequenceResult apply(const BoxId& box, const QMap<QString, QString>& sent,
                         const Network& before, QString& message);

    const Hub m_hub;
    ParameterPanel& m_panel;
    QWidget& m_button;
    Busy m_busy;
};
