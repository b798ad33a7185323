// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QMap>
#include <QObject>
#include <QString>

struct HttpResult;
namespace Ui
{
class ConfigurationArea;
class ControlArea;
} // namespace Ui

/// The configuration and control areas: filled from the selected box, and read when the operator
/// saves. A reply that does not come leaves its widget as it is.
class ParameterPanel : public QObject
{
    Q_OBJECT

public:
    ParameterPanel(const Hub& hub, Ui::ConfigurationArea& config, Ui::ControlArea& control);

    /// Reads every parameter of the panels. Empty `suffix`: of the selected box, into the panels.
    /// Otherwise of the box at `ip`, for a snapshot named by `suffix` (its MAC address).
    void getConfigDeviceinfo(const QString& suffix, const QString& ip);
    /// The parameters of a snapshot, in the order in which they are read.
    static QStringList snapshotParameters();

    /// One parameter of a box has arrived.
    void handleReply(const HttpResult& result);

    /// What saving sends: parameter to text, in the order of sending. A group of buttons with none
    /// checked adds nothing.
    QMap<QString, QString> valuesToSave() const;

private:
    void showDefaults();
    void show(const QString& parameter, const QString& value);
    bool showNetwork(const QString& parameter, const QString& value);
    bool showEncoder(const QString& parameter, const QString& value);
    bool showNumber(const QString& parameter, const QString& value);
    void decodeEncoderMode();

    const Hub m_hub;
    Ui::ConfigurationArea& m_config;
    Ui::ControlArea& m_control;
};
