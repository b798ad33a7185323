// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "ui/hub/parameter_row.h"

#include <QMap>
#include <QObject>
#include <QStringList>

struct HttpResult;

/// The configuration and control areas: filled from the selected box, and read when the operator
/// saves. A reply that does not come leaves its widget as it is.
class ParameterPanel : public QObject
{
    Q_OBJECT

public:
    ParameterPanel(const Hub& hub, const ParameterTable& table);

    /// Reads every parameter of the panels from the selected box.
    void getConfigDeviceinfo();

    /// One parameter of a box has arrived.
    void handleReply(const HttpResult& result);

    /// What saving sends: parameter to text, in the order of sending. A group of buttons with none
    /// checked adds nothing.
    QMap<QString, QString> valuesToSave() const;

private:
    const ParameterRow* find(const QString& parameter) const;

    const Hub m_hub;
    const ParameterTable m_table;
    QStringList m_read; ///< what the panels read, in this order
};
