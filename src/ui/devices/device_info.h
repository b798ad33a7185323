// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"

#include <QObject>

class TreeView;
struct HttpResult;

/// The information list: what the selected box says about itself, one row per parameter.
class DeviceInfo : public QObject
{
    Q_OBJECT

public:
    DeviceInfo(const Hub& hub, TreeView* infoView);

    /// Reads the information of the box at `ip`. Empty, or the selected box: the list is cleared
    /// and filled anew. Another box: only what its row in the device list needs.
    void getDeviceinfo(const QString& ip);
    /// One parameter has arrived.
    void handleReply(const HttpResult& result);
    /// Captions in the language of now.
    void retranslate();

signals:
    /// Something that the box's row in the device list shows has changed.
    void deviceChanged();
    /// The box at `ip` has told its MAC address.
    void macReported(const QString& ip, const QString& mac);

private:
    void showRow(const QString& parameter, const QString& value);
    void updateDevice(const HttpResult& result, const QString& value);

    const Hub m_hub;
    TreeView* m_view;
};
