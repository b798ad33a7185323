// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

/// The window's named properties: the vocabulary that features share, each name once.
class HubState
{
public:
    /// `window` carries the properties and outlives this object.
    explicit HubState(QObject* window) : m_window(window) {}

    /// The selected box, the target of every operation; empty before the first selection.
    QString deviceIp() const { return text("deviceip"); }
    void setDeviceIp(const QString& ip) { m_window->setProperty("deviceip", ip); }

    /// The encoder's mode and format as last read, text; empty until then.
    QString encoderMode() const { return text("eParam_NDIEncMode"); }
    void setEncoderMode(const QString& mode) { m_window->setProperty("eParam_NDIEncMode", mode); }
    QString encoderFormat() const { return text("eParam_NDIHXFormat"); }
    void setEncoderFormat(const QString& f) { m_window->setProperty("eParam_NDIHXFormat", f); }

    /// What the panel showed of the network settings after they were last read.
    void setShownDhcp(bool on) { m_window->setProperty("UIDHCP", on); }
    void setShownIp(const QString& ip) { m_window->setProperty("UIIP", ip); }
    void setShownMask(const QString& mask) { m_window->setProperty("UIMASK", mask); }

    /// The firmware package that lies ready for the new-firmware mark; empty when there is none.
    QString otaFilePath() const { return text("otaFilepath"); }
    void setOtaFile(const QString& path, const QString& baseName)
    {
        m_window->setProperty("otaFilepath", path);
        m_window->setProperty("otaFile", baseName);
    }

    /// The sources that the selected box can decode, as last read.
    void setDecodeList(const QVariant& list)
    {
        m_window->setProperty("eParam_NDIDecodeList", list);
    }

private:
    QString text(const char* name) const { return m_window->property(name).toString(); }

    QObject* m_window;
};
