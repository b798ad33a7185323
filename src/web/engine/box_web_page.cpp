// SPDX-License-Identifier: MIT
#include "web/engine/box_web_page.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QFileDialog>
#include <QWebEngineCertificateError>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineQuotaRequest>
#include <QWebEngineRegisterProtocolHandlerRequest>

namespace
{

/// From the third dialog on the user may silence a page.
constexpr int politeDialogs = 2;

QString askerName(const QUrl& origin)
{
    QString name = origin.host();
    if (name.isEmpty())
        return PageDialog::tr("未知来源");
    // A host of any length would push the rest out of sight; its end is what tells who it is.
    constexpr int longestName = 80;
    if (name.size() > longestName)
        name = QStringLiteral("…") + name.right(longestName);
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

/// The engine asks this by the same function as a page's own questions.
bool isLeaveQuestion(const QString& text)
{
    // Not ours to translate: named apart from the call, it stays out of our translations.
    static const char question[] =
        "Are you sure you want to leave this page? Changes that you made may not be saved.";
    return text == QCoreApplication::translate("QWebEnginePage", question);
}

} // namespace

bool CustomWebEnginePage::certificateError(const QWebEngineCertificateError&)
{
    return true;
}

BoxWebPage::BoxWebPage(QObject* parent) : CustomWebEnginePage(parent)
{
    connect(this, &QWebEnginePage::featurePermissionRequested, this, &BoxWebPage::denyFeature);
    connect(this, &QWebEnginePage::authenticationRequired, this, &BoxWebPage::logIn);
    connect(this, &QWebEnginePage::fullScreenRequested, this,
            [](QWebEngineFullScreenRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::quotaRequested, this,
            [](QWebEngineQuotaRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::registerProtocolHandlerRequested, this,
            [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(this, &QWebEnginePage::urlChanged, this, [this] { m_leaving = false; });
    connect(this, &QWebEnginePage::renderProcessTerminated, this, &BoxWebPage::dismissDialog);
}

void BoxWebPage::beginVisit()
{
    m_asked = 0;
    m_silenced = false;
    m_leaving = true;
    dismissDialog();
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
    return mayVisit(url) || engineFrame;
}

QStringList BoxWebPage::chooseFiles(FileSelectionMode mode, const QStringList&, const QStringList&)
{
    if (!mayAsk())
        return {};
    const QString title = PageDialog::tr("选择发送给 %1 的文件").arg(askerName(url()));
    if (mode == FileSelectOpenMultiple)
        return QFileDialog::getOpenFileNames(view(), title);
    const QString file = QFileDialog::getOpenFileName(view(), title);
    return file.isEmpty() ? QStringList() : QStringList{file};
}

void BoxWebPage::javaScriptAlert(const QUrl& securityOrigin, const QString& msg)
{
    if (mayAsk() && !m_silenced)
        askForScript(new PageDialog(PageDialog::Notice, askerName(securityOrigin), msg, view()));
}

bool BoxWebPage::javaScriptConfirm(const QUrl& securityOrigin, const QString& msg)
{
    if (m_leaving && isLeaveQuestion(msg))
        return true;
    if (!mayAsk() || m_silenced)
        return false;
    return askForScript(
        new PageDialog(PageDialog::Question, askerName(securityOrigin), msg, view()));
}

bool BoxWebPage::javaScriptPrompt(const QUrl& securityOrigin, const QString& msg,
                                  const QString& defaultValue, QString* result)
{
    if (!mayAsk() || m_silenced)
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

void BoxWebPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int,
                                          const QString&)
{
    // A page could fill a log without end.
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
    if (mayAsk()) {
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
    return view() && view()->isVisible() && !m_dialog;
}

bool BoxWebPage::ask(PageDialog* dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog = dialog;
    return dialog->exec() == QDialog::Accepted;
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
