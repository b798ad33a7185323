// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/box_state.h"
#include "simulator/faults.h"
#include "simulator/http_server.h"

#include <QJsonObject>

#include <functional>

namespace sim
{

/// What the protocol can make a box do that takes more than remembering. The functions are called
/// from worker threads.
class BoxHardware
{
public:
    virtual ~BoxHardware() = default;

    /// False when the recording does not begin.
    virtual bool startRecording(const QString& fileName, HttpWire* wire) = 0;
    /// Finishes the file; false when nothing was being recorded or the file came out broken.
    virtual bool stopRecording(HttpWire* wire) = 0;
    /// Makes the box's own picture available, over SRT when `srtPort` is not 0; gives the URL,
    /// empty when it did not start.
    virtual QString startLive(quint16 srtPort, HttpWire* wire) = 0;
    virtual void stopLive() = 0;
    virtual void reboot() = 0;          ///< returns at once
    virtual void restartSoftware() = 0; ///< returns at once
    /// Changes over to the uploaded firmware; returns at once.
    virtual void changeFirmware(const QString& version) = 0;
    /// Removes the file of a recording that was taken out of the list.
    virtual void removeFile(const Recording& recording) = 0;
};

/// The box's side of the control protocol on port 8081: /config, /control, /upload, /media/.
/// handle() may be called from several threads at once.
class KoraApi
{
public:
    /// `requested` is told of each request before it is answered. All must outlive the object.
    KoraApi(BoxState* state, FaultList* faults, BoxHardware* hardware,
            std::function<void(const BoxRequest&)> requested);

    HttpReply handle(const HttpRequest& request);
    /// The same for the web port, where `dashboard` is the page to show.
    HttpReply handleWeb(const HttpRequest& request, const QByteArray& dashboard);
    UploadLimits beforeUpload();
    /// The paths that take POST.
    static QStringList postPaths();

private:
    HttpReply config(const HttpRequest& request);
    HttpReply read(const QString& name, const HttpRequest& request);
    HttpReply write(const QMap<QString, QString>& fields, const HttpRequest& request);
    /// Stores a setting that is acceptable.
    void take(const QString& name, const QString& value, const QStringList& tags);
    HttpReply control(const HttpRequest& request);
    HttpReply upload(const HttpRequest& request);
    HttpReply media(const HttpRequest& request);
    bool run(const QString& action, const QMap<QString, QString>& fields, QJsonObject* reply,
             std::function<void()>* afterwards, HttpWire* wire);
    bool startStream(const QMap<QString, QString>& fields, QJsonObject* reply, HttpWire* wire);
    bool startOta(std::function<void()>* afterwards);
    bool deleteRecording(const QString& name);

    BoxState* const m_state;
    FaultList* const m_faults;
    BoxHardware* const m_hardware;
    const std::function<void(const BoxRequest&)> m_requested;
};

/// The version that a firmware file announces in its name: "1.2.0.623" for "KORA_1.2.0.623.dat";
/// the name without suffix when there is none.
QString versionOfFirmwareFile(const QString& fileName);

} // namespace sim
