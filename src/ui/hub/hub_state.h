// SPDX-License-Identifier: MIT
#pragma once

#include "common/box_protocol.h"

#include <QObject>
#include <QString>
#include <QVariantMap>

class Item;

/// The window's named properties: the vocabulary that features share, each name once. And the news
/// of the selection that features share.
class HubState : public QObject
{
    Q_OBJECT

public:
    /// `window` carries the properties and outlives this object.
    explicit HubState(QObject* window) : m_window(window) {}

    /// The selected box, the target of every operation; empty while none is selected.
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

    /// MAC addresses of boxes whose settings are to be written back, and, for a box that gets its
    /// second try, the address followed by "1".
    QStringList needRestore() const { return m_window->property("needrestore").toStringList(); }
    void setNeedRestore(const QStringList& list) { m_window->setProperty("needrestore", list); }

    /// The settings saved of the box with this MAC address. The address is the property's name:
    /// anything that is none names no property, so it can touch nothing else of the window.
    QVariantMap savedConfiguration(const QString& mac) const
    {
        return BoxProtocol::isMacAddress(mac)
                   ? m_window->property(mac.toLatin1().constData()).toMap()
                   : QVariantMap();
    }
    void setSavedConfiguration(const QString& mac, const QVariantMap& values)
    {
        if (BoxProtocol::isMacAddress(mac))
            m_window->setProperty(mac.toLatin1().constData(), values);
    }

    /// The sources that the selected box can decode, as last read.
    void setDecodeList(const QVariant& list)
    {
        m_window->setProperty("eParam_NDIDecodeList", list);
    }

signals:
    /// The KORA box is now the one that every operation addresses.
    void koraSelected(const Item& box);
    /// What is shown of the selected box may be out of date: read it.
    void readingWanted();

private:
    QString text(const char* name) const { return m_window->property(name).toString(); }

    QObject* m_window;
};
