// SPDX-License-Identifier: MIT
#include "web/engine/box_web_page.h"

#include "common/limits.h"
#include "web/engine/page_hosts.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QFileDialog>
#include <QWebEngineCertificateError>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineProfile>
#include <QWebEngineQuotaRequest>
#include <QWebEngineRegisterProtocolHandlerRequest>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

namespace
{

/// From the third dialog on the user may silence a page; after some more it is silent anyway.
constexpr int politeDialogs = 2;
/// What an operator may mistype, and no more: each refusal brings the question again.
constexpr int mostLogins = 3;

QString askerName(const QUrl& origin)
{
    QString name = origin.host();
    if (name.isEmpty())
        return PageDialog::tr("未知来源");
    name = PageDialog::shortHost(name);
    if (origin.port() >= 0)
        name += QLatin1Char(':') + QString::number(origin.port());
    return name;
}

bool isWebAddress(const QUrl& url)
{
    const QString scheme = url.scheme();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https");
}

/// What a page may open: the web and what it makes by itself; no files, no programs.
bool mayVisit(const QUrl& url)
{
    const QString scheme = url.scheme();
    return isWebAddress(url) || scheme == QLatin1String("about") ||
           scheme == QLatin1String("data") || scheme == QLatin1String("blob");
}

} // namespace

bool CustomWebEnginePage::certificateError(const QWebEngineCertificateError&)
{
    return true;
}

BoxWebPage::BoxWebPage(const std::shared_ptr<QWebEngineProfile>& profile, PageHosts& hosts)
    : CustomWebEnginePage(profile.get()), m_hosts(hosts)
{
    // The engine wants the profile to be there until the page is gone.
    connect(this, &QObject::destroyed, qApp, [profile] {});
    connect(this, &QWebEnginePage::featurePermissionRequested, this, &BoxWebPage::denyFeature);
    connect(this, &QWebEnginePage::authenticationRequired, this, &BoxWebPage::logIn);
    connect(this, &QWebEnginePage::fullScreenRequested, this,
            [](QWebEngineFullScreenRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::quotaRequested, this,
            [](QWebEngineQuotaRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::registerProtocolHandlerRequested, this,
            [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::renderProcessTerminated, this, &BoxWebPage::dismissDialog);
}

void BoxWebPage::retire()
{
    m_retired = true;
    dismissDialog();
    if (!isAsking())
        deleteLater();
}

void BoxWebPage::keepToHosts()
{
    // A copy in each document, from before its own scripts, where they cannot reach it. Removed
    // again, it stays in force.
    QWebEngineScript script;
    script.setName(QStringLiteral("hosts"));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    script.setRunsOnSubFrames(true);
    script.setSourceCode(QStringLiteral("{ const [root, head, policy] = ['html', 'head', 'meta']"
                                        ".map(name => document.createElement(name));"
                                        "policy.httpEquiv = 'Content-Security-Policy';"
                                        "policy.content = '%1';"
                                        "root.append(head); head.append(policy);"
                                        "if (document.documentElement)"
                                        " document.documentElement.append(head);"
                                        "else document.append(root);"
                                        "head.remove(); root.remove(); }")
                             .arg(m_hosts.policy()));
    scripts().remove(scripts().findScript(script.name()));
    scripts().insert(script);
}

void BoxWebPage::dismissDialog()
{
    if (m_dialog)
        m_dialog->reject();
}

bool BoxWebPage::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame)
{
    // The engine shows documents in frames of its own scheme.
    const bool engineFrame = !isMainFrame && url.scheme() == QLatin1String("chrome-extension");
    if (engineFrame || (mayVisit(url) && m_hosts.mayReach(url)))
        return true;
    if (isMainFrame)
        m_refused = url;
    return false;
}

QStringList BoxWebPage::chooseFiles(FileSelectionMode mode, const QStringList&, const QStringList&)
{
    if (!mayAsk())
        return {};
    const QString title = PageDialog::tr("选择发送给 %1 的文件").arg(askerName(url()));
    const QPointer<BoxWebPage> self(this);
    ++m_waits;
    QStringList files;
    if (mode == FileSelectOpenMultiple)
        files = QFileDialog::getOpenFileNames(view(), title);
    else
        files << QFileDialog::getOpenFileName(view(), title);
    if (!self)
        return {};
    endWait();
    files.removeAll(QString());
    return files;
}

void BoxWebPage::javaScriptAlert(const QUrl& securityOrigin, const QString& msg)
{
    if (mayAskForScript())
        askForScript(new PageDialog(PageDialog::Notice, askerName(securityOrigin), msg, view()));
}

bool BoxWebPage::javaScriptConfirm(const QUrl& securityOrigin, const QString& msg)
{
    if (!mayAskForScript())
        return false;
    return askForScript(
        new PageDialog(PageDialog::Question, askerName(securityOrigin), msg, view()));
}

bool BoxWebPage::javaScriptPrompt(const QUrl& securityOrigin, const QString& msg,
                                  const QString& defaultValue, QString* result)
{
    if (!mayAskForScript())
        return false;
    auto* dialog = new PageDialog(PageDialog::Prompt, askerName(securityOrigin), msg, view());
    dialog->setAnswer(defaultValue);
    // Taken when it closes: the dialog does not outlive the wait.
    QString answer;
    connect(dialog, &QDialog::accepted, dialog, [dialog, &answer] { answer = dialog->answer(); });
    if (!askForScript(dialog))
        return false;
    *result = answer;
    return true;
}

void BoxWebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message,
                                          int, const QString&)
{
    // A page could fill a log without end, and holds up the window where there is none.
    constexpr int secondMs = 1000;
    if (!m_second.isValid() || m_second.elapsed() > secondMs) {
        m_second.start();
        m_said = 0;
    }
    const bool wasFine = m_said <= Limits::PageConsoleChars;
    m_said += message.size() + Limits::PageConsoleMessage;
    if (wasFine && m_said > Limits::PageConsoleChars)
        emit flooding();
}

void BoxWebPage::denyFeature(const QUrl& origin, Feature feature)
{
    setFeaturePermission(origin, feature, PermissionDeniedByUser);
}

void BoxWebPage::logIn(const QUrl& url, QAuthenticator* authenticator)
{
    QString user;
    QString password;
    bool accepted = false;
    const bool isEnough = m_logins >= mostLogins;
    if (isEnough && mayAsk())
        emit loginsEnded();
    if (mayAsk() && !isEnough) {
        ++m_logins;
        auto* dialog =
            new PageDialog(PageDialog::Login, askerName(url), authenticator->realm(), view());
        connect(dialog, &QDialog::accepted, dialog, [dialog, &user, &password] {
            user = dialog->answer();
            password = dialog->password();
        });
        accepted = ask(dialog);
    }
    if (!accepted) {
        *authenticator = QAuthenticator(); // shows the server's own page of refusal
        return;
    }
    authenticator->setUser(user);
    authenticator->setPassword(password);
}

/// A page that nobody looks at asks nothing, and none asks two things at a time.
bool BoxWebPage::mayAsk() const
{
    return view() && view()->isVisible() && m_waits == 0;
}

bool BoxWebPage::mayAskForScript()
{
    if (!mayAsk() || m_silenced)
        return false;
    m_silenced = m_asked >= Limits::PageDialogs;
    if (m_silenced)
        emit dialogsEnded();
    return !m_silenced;
}

bool BoxWebPage::ask(PageDialog* dialog)
{
    const QPointer<BoxWebPage> self(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog = dialog;
    ++m_waits;
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!self)
        return false;
    m_dialog.clear();
    endWait();
    return accepted;
}

void BoxWebPage::endWait()
{
    // After its callers in the engine.
    if (--m_waits == 0 && m_retired)
        deleteLater();
}

bool BoxWebPage::askForScript(PageDialog* dialog)
{
    const QPointer<BoxWebPage> self(this);
    if (++m_asked > politeDialogs)
        dialog->offerSilence();
    bool silence = false;
    connect(dialog, &QDialog::finished, dialog,
            [dialog, &silence] { silence = dialog->silenceWanted(); });
    const bool accepted = ask(dialog);
    if (!self)
        return false;
    m_silenced = m_silenced || silence;
    return accepted;
}

bool PopupPage::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame)
{
    if (!isMainFrame)
        return false;
    // Many pages open an empty window first and fill in its address.
    if (url.scheme() == QLatin1String("about"))
        return true;
    if (isWebAddress(url))
        emit targetKnown(url);
    return false;
}
