// SPDX-License-Identifier: MIT
#pragma once

#include "common/uisingleton.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QVariantMap>

/// Every plain GET of the program: parameter reads from boxes, the web page probe, update
/// descriptors and downloads. GUI thread only.
///
/// A request that fails in any way ends with an empty body.
class Spark_Http : public QObject, public UISingleton<Spark_Http>
{
    Q_OBJECT

public:
    /// The longest time without data, in milliseconds, before a request counts as failed.
    static constexpr int TransferLimitMs = 2000;
    /// A body longer than this, in bytes, is not one of a box: the request is given up.
    static constexpr qint64 BodyLimit = 4 * 1024 * 1024;

    /// Requests `url` (already encoded). Non-blocking: returns the request's id at once, and the
    /// answer comes by S_finished. Blocking: waits, serving events other than user input, and
    /// returns the body. `type` is the routing word of the answer.
    QString get(const QString& type, const QString& url, bool isblocking);

    /// Blocking, serving events: SparkDownload::start(). Returns the path written, empty on
    /// failure. `savePath` is a folder and ends in "/".
    QString downloadFile(const QString& url, const QString& savePath);

    /// Blocking, serving events: SparkDownload::startChecked(). Returns the path, empty on
    /// failure.
    QString downloadFileChecked(const QString& url, const QString& savePath, const QString& md5);

signals:
    /// The answer of one non-blocking request: "type", "id", "deviceip", "body", all text.
    void S_finished(QVariantMap map);

private slots:
    void R_finished();

private:
    friend class UISingleton<Spark_Http>;
    Spark_Http();
    QNetworkAccessManager& manager();

    QNetworkAccessManager* m_manager = nullptr;
};
