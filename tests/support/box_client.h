// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpSocket>

/// A client that knows nothing of the simulator: the real curl, waited for.
struct CurlResult {
    int exitCode = -1;
    QByteArray output;
    qint64 ms = 0;

    QJsonObject json() const { return QJsonDocument::fromJson(output).object(); }
    QString status() const { return json().value(QLatin1String("status")).toString(); }
};

inline CurlResult curl(const QStringList& arguments)
{
    CurlResult result;
    QElapsedTimer clock;
    clock.start();
    QProcess process;
    process.start("curl", QStringList{"-s", "-S", "-m", "20"} + arguments);
    if (process.waitForFinished(30000)) {
        result.exitCode = process.exitCode();
        result.output = process.readAllStandardOutput();
    }
    result.ms = clock.elapsed();
    return result;
}

inline QString apiUrl(const QString& address, const QString& path)
{
    return QString("http://%1:8081%2").arg(address, path);
}

inline CurlResult readParameter(const QString& address, const QString& name)
{
    return curl({apiUrl(address, "/config?action=get&param_name=" + name)});
}

inline QString valueOf(const QString& address, const QString& name)
{
    return readParameter(address, name).json().value(QLatin1String("value")).toString();
}

inline CurlResult writeParameter(const QString& address, const QString& name, const QString& value)
{
    const QString body = "action=set&param_name=" + name + "&value=" + value;
    return curl({"-d", body, "-X", "POST", apiUrl(address, "/config?")});
}

inline CurlResult command(const QString& address, const QString& body)
{
    return curl({"-d", "action=" + body, "-X", "POST", apiUrl(address, "/control?")});
}

inline CurlResult upload(const QString& address, const QString& file)
{
    return curl({"-X", "POST", "-F", "ota_file=@" + file, apiUrl(address, "/upload")});
}

inline bool isRefused(const QString& address, quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(address, port);
    return !socket.waitForConnected(2000) &&
           socket.error() == QAbstractSocket::ConnectionRefusedError;
}
