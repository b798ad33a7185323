// SPDX-License-Identifier: MIT
#pragma once

#include "web/engine/page_dialog.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QWebEnginePage>

#include <memory>

class PageHosts;
class QAuthenticator;
class QWebEngineProfile;

/// A page whose certificate nobody signed: boxes make their own.
class CustomWebEnginePage : public QWebEnginePage
{
    Q_OBJECT

public:
    using QWebEnginePage::QWebEnginePage;

protected:
    bool certificateError(const QWebEngineCertificateError& error) override;
};

/// The page of a box, which the program does not trust: it may not leave the web, asks for nothing
/// of the computer, and each dialog says whose it is.
class BoxWebPage : public CustomWebEnginePage
{
    Q_OBJECT

public:
    /// `hosts` knows whom it may talk to, and outlives it.
    BoxWebPage(const std::shared_ptr<QWebEngineProfile>& profile, PageHosts& hosts);

    /// The user has left, whatever the page does: its process ends, and this deletes itself as soon
    /// as nobody waits in it.
    void retire();
    /// Binds the documents that come to the hosts that are allowed by now.
    void keepToHosts();
    /// The last address that it was not let to go to.
    QUrl refused() const { return m_refused; }
    /// Whether the user is being asked something for it.
    bool isAsking() const { return m_waits > 0; }
    /// Answers an open dialog with "no"; its page is gone or out of sight.
    void dismissDialog();

signals:
    /// From now on it is asked for no login, or shows no dialogs.
    void loginsEnded();
    void dialogsEnded();
    /// It says more to nobody than the window can bear.
    void flooding();

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
    QStringList chooseFiles(FileSelectionMode mode, const QStringList& oldFiles,
                            const QStringList& acceptedMimeTypes) override;
    void javaScriptAlert(const QUrl& securityOrigin, const QString& msg) override;
    bool javaScriptConfirm(const QUrl& securityOrigin, const QString& msg) override;
    bool javaScriptPrompt(const QUrl& securityOrigin, const QString& msg,
                          const QString& defaultValue, QString* result) override;
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& message,
                                  int lineNumber, const QString& sourceID) override;

private:
    void denyFeature(const QUrl& origin, Feature feature);
    void logIn(const QUrl& url, QAuthenticator* authenticator);
    bool mayAsk() const;
    bool mayAskForScript();
    /// Waits for the user, serving events. False when the user declines or the page goes away.
    bool ask(PageDialog* dialog);
    void endWait();
    /// As ask(), for a page that can ask again and again.
    bool askForScript(PageDialog* dialog);

    PageHosts& m_hosts;
    QUrl m_refused;
    QPointer<PageDialog> m_dialog;
    int m_waits = 0; ///< calls of the engine in which the user is asked
    int m_asked = 0; ///< dialogs of scripts during this visit
    int m_logins = 0;
    QElapsedTimer m_second; ///< in which it has said so much
    qint64 m_said = 0;
    bool m_silenced = false;
    bool m_retired = false;
};

/// The page of a new window until its address is known, which it hands over instead of loading it.
/// Its view is never shown, so it asks nothing.
class PopupPage : public BoxWebPage
{
    Q_OBJECT

public:
    using BoxWebPage::BoxWebPage;

signals:
    void targetKnown(const QUrl& url);

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override;
};
