// SPDX-License-Identifier: MIT
#pragma once

#include "web/engine/page_dialog.h"

#include <QPointer>
#include <QWebEnginePage>

#include <functional>

class QAuthenticator;

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
    explicit BoxWebPage(QObject* parent = nullptr);

    /// The user goes to another page: what was silenced may speak again, and the old page may not
    /// hold the user back.
    void beginVisit();
    /// Answers an open dialog with "no"; its page is gone or out of sight.
    void dismissDialog();

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
    /// Waits for the user, serving events. False when the user declines or the page goes away.
    bool ask(PageDialog* dialog);
    /// As ask(), for a page that can ask again and again.
    bool askForScript(PageDialog* dialog);

    QPointer<PageDialog> m_dialog;
    int m_asked = 0; ///< dialogs of scripts during this visit
    bool m_silenced = false;
    bool m_leaving = false;
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
