// SPDX-License-Identifier: MIT
#pragma once

#include "ui/configuration/shown_parameter.h"
#include "ui/hub/hub.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariant>

#include <optional>
#include <vector>

class QLabel;
class QWidget;
struct HttpResult;

/// The configuration and control areas: filled from the selected box, and read when the operator
/// saves. What this box has not told shows as unknown and cannot be changed; what the operator
/// changed stays until it is saved or another box is selected.
///
/// Values are shown once the same box has said before and after them who it is; else they are read
/// again, a few times: two boxes may claim the address.
class ParameterPanel : public QObject
{
    Q_OBJECT

public:
    /// `summary` says what is wrong with the box, and how much is unread, missing or unsaved;
    /// `warning` shows beside it when something is wrong.
    ParameterPanel(const Hub& hub, const ParameterTable& table, QLabel& summary, QWidget& warning);

    /// Reads every parameter of the panels from the selected box.
    void getConfigDeviceinfo();

    /// One parameter of a box has arrived, or failed to.
    void handleReply(const HttpResult& result);
    /// The box at `ip` has told its MAC address: when another one answers there than before,
    /// nothing of that one stays.
    void noteMac(const QString& ip, const QString& mac);
    bool isAnother(const QString& mac) const;

    /// Of the box that the panels are about; empty until it has told it.
    QString mac() const { return m_mac; }
    /// What saving sends to the box at `ip`: parameter to text, in the order of sending. Empty
    /// while the box has told nothing that can be saved.
    QMap<QString, QString> valuesToSave(const QString& ip) const;
    /// How many of the saved parameters the box at `ip` has not told.
    int unreadCount(const QString& ip) const;
    /// The box at `ip` has taken all of `values`.
    void noteSaved(const QString& ip, const QMap<QString, QString>& values);

    /// What is wrong with the selected box, in words; empty when nothing is. The values of such a
    /// box look as old as they are.
    void setTrouble(const QString& text);
    /// States in the language of now.
    void retranslate();

signals:
    /// Why nothing can be ordered of the box, as far as the panels know: nothing of it has been
    /// read. Empty when something has. `mayObey`: nothing says that it would not take an order.
    void hindered(const QString& why, bool mayObey);

private:
    ShownParameter* find(const QString& parameter);
    void read();
    void askIdentity();
    void askParameters();
    void handleIdentity(const HttpResult& result);
    void proveIfComplete();
    void showHeld();
    void readAgain();
    void rememberValue(const QString& ip, const QString& name, const QVariant& value) const;
    void watch();
    void showStates();
    void showMarks();
    bool isAnyKnown() const;
    void tellHindrance();
    QString summaryText() const;

    const Hub m_hub;
    QLabel& m_summary;
    QWidget& m_warning;
    QString m_trouble;
    std::vector<ShownParameter> m_parameters;
    QStringList m_read;              ///< what the panels read, in this order
    QHash<QString, QString> m_asked; ///< parameters by the ids of the requests still under way
    /// What was told of them, until it is known by whom; invalid: there is none of that name.
    QMap<QString, QVariant> m_held;
    QString m_question;              ///< id of the one who answers, empty while that is not asked
    bool m_isLastQuestion = false;   ///< it was asked after the parameters, not before them
    std::optional<QString> m_before; ///< who answered before them; empty when without MAC address
    int m_readings = 0;              ///< since the panels were to be read
    QTimer m_again;                  ///< until the next reading
    QString m_ip;                    ///< the box that the panels are about
    QString m_mac;                   ///< its MAC address, empty until it has told it
    bool m_selectedAnew = true;
    bool m_wasNamed = false; ///< its MAC address was known before it was last read
    bool m_sameBox = false;  ///< since it was last read it has told that it is the one of before
};
