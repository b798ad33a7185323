// SPDX-License-Identifier: MIT
#include "common/http_request.h"

#include <QSslConfiguration>
#include <QUrl>

QNetworkRequest httpRequest(const QString& url)
{
    QNetworkRequest request(QUrl::fromEncoded(url.toUtf8(), QUrl::StrictMode));
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/xhtml+xml;chatset=utf-8"));
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setProtocol(QSsl::AnyProtocol);
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    request.setSslConfiguration(tls);
    return request;
}
