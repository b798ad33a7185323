// SPDX-License-Identifier: MIT
#pragma once

#include "ui/configuration/shown_parameter.h"
#include "ui/hub/hub.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QStringList>

#include <vector>

class QLabel;
struct HttpResult;

/// The configuration and control areas: filled from the selected box, and read when the operator
/// saves. What this box has not told shows as unknown and cannot be changed; what the operator
/// changed stays until it is saved or another box is selected.
class ParameterPanel : public QObject
{
    Q_OBJECT

public:
    /// `summary` says how much is unread, missing or unsaved.
    ParameterPanel(const Hub& hub, const ParameterTable& table, QLabel& summary);

    /// Reads every parameter of the panels from the selected box.
    void getConfigDeviceinfo();

    /// One parameter of a box has arrived, or failed to.
    void handleReply(const HttpResult& result);
    /// The box at `ip` has told its MAC address: when another one answers there than before,
    /// nothing of that one stays.
    void noteMac(const QString& ip, const QString& mac);

    /// Of the box that the panels are about; empty until it has told it.
    QString mac() const { return m_mac; }
    /// What saving sends to the box at `ip`: parameter to text, in the order of sending. Empty
    /// while the box has told nothing that can be saved.
    QMap<QString, QString> valuesToSave(const QString& ip) const;
    /// How many of the saved parameters the box at `ip` has not told.
    int unreadCount(const QString& ip) const;
    /// The box at `ip` has taken all of `values`.
    void noteSaved(const QString& ip, const QMap<QString, QString>& values);

    /// States in the language of now.
    void retranslate();

private:
    ShownParameter* find(const QString& parameter);
    void rememberValue(const HttpResult& result) const;
    void watch();
    void showStates();
    QString summaryText() const;

    const Hub m_hub;
    QLabel& m_summary;
    std::vector<ShownParameter> m_parameters;
    QStringList m_read;              ///< what the panels read, in this order
    QHash<QString, QString> m_asked; ///< parameters by the ids of the requests still under way
    QString m_ip;                    ///< the box that the panels are about
    QString m_mac;                   ///< its MAC address, empty until it has told it
    bool m_selectedAnew = true;
    bool m_sameBox = false; ///< since it was last read it has told that it is the one of before
};
