// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QWebEngineUrlRequestInterceptor>

/// Whom the page of a box may talk to: its box, on whatever port. For any other host the operator
/// is asked once a visit; this computer is none that he is asked for.
class PageHosts : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT

public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    /// A visit to the box at `url`; nothing of the visit before is allowed any longer.
    void begin(const QUrl& url);
    /// For the rest of the visit.
    void allow(const QString& host) { m_allowed << host; }
    /// Whether a request may be sent. Says wanted() when it is for the operator to decide.
    bool mayReach(const QUrl& url);
    /// A Content-Security-Policy for what the engine does not show an interceptor: sockets.
    QString policy() const;

    void interceptRequest(QWebEngineUrlRequestInfo& info) override;

signals:
    /// The first time that a page wants this host.
    void wanted(const QString& host);

private:
    QStringList m_allowed; ///< the box, and whom the operator allowed
    QStringList m_asked;
};
