// SPDX-License-Identifier: MIT
#include "web/engine/engine_browser.h"

#include "common/limit_log.h"
#include "common/limits.h"
#include "common/platform.h"
#include "web/engine/download_line.h"
#include "web/engine/page_hosts.h"
#include "web/engine/web_view.h"

#include <QCoreApplication>
#include <QPointer>
#include <QProgressBar>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <QWebEngineScript>

namespace
{

constexpr int progressHeight = 3;
constexpr int mostDownloadLines = 4;
/// How often a page is asked for a sign of life, and for how long it may owe one.
constexpr int pulseMs = 1000;
constexpr int patienceMs = 4000;

QUrl blankPage()
{
    return QUrl(QStringLiteral("about:blank"));
}

bool sameServer(const QUrl& a, const QUrl& b)
{
    return a.scheme() == b.scheme() && a.host() == b.host() && a.port() == b.port();
}

} // namespace

EngineBrowser::EngineBrowser(QWidget* parent)
    : Browser(parent)
    , m_progress(new QProgressBar(this))
    , m_bar(new PageBar(this))
    , m_view(new WebView(this))
    , m_notice(new PageNotice(this))
    , m_downloads(new QVBoxLayout)
{
    // The window around it cannot show OpenGL.
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    setAttribute(Qt::WA_NativeWindow);
    m_view->setObjectName(QStringLiteral("webEngineView"));
    m_progress->setObjectName(QStringLiteral("webProgress"));
    m_progress->setTextVisible(false);
    m_progress->setStyleSheet(
        QStringLiteral("min-height: 0; border: none; background-color: transparent"));
    m_progress->setFixedHeight(progressHeight);
    m_downloads->setSpacing(0);
    // The page keeps its size when the bar comes and goes.
    QSizePolicy keepRoom = m_progress->sizePolicy();
    keepRoom.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(keepRoom);

    // The notice lies over the view, which goes on living under it.
    auto* stack = new QStackedLayout;
    stack->setStackingMode(QStackedLayout::StackAll);
    stack->addWidget(m_view);
    stack->addWidget(m_notice);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_progress);
    layout->addWidget(m_bar);
    layout->addLayout(stack, 1);
    layout->addLayout(m_downloads);

    connect(m_notice, &PageNotice::retry, this, [this] { setUrl(m_wanted.toString()); });
    connect(m_view, &QWebEngineView::loadStarted, this, &EngineBrowser::handleLoadStarted);
    connect(m_view, &QWebEngineView::loadProgress, this, &EngineBrowser::handleProgress);
    connect(m_view, &QWebEngineView::loadFinished, this, &EngineBrowser::handleLoadFinished);
    connect(m_view, &WebView::contentChanged, this, &EngineBrowser::lookAtDocument);
    connect(&m_view->hosts(), &PageHosts::wanted, m_bar,
            [this](const QString& host) { m_bar->tell(PageBar::HostWanted, host); });
    connect(m_view, &WebView::loginsEnded, this, [this] {
        m_bar->tell(PageBar::LoginsEnded);
        limitReached(m_wanted.host(), QStringLiteral("logins of a page"));
    });
    connect(m_view, &WebView::dialogsEnded, this, [this] {
        m_bar->tell(PageBar::DialogsEnded);
        limitReached(m_wanted.host(), QStringLiteral("dialogs of a page"));
    });
    // After the page's call.
    connect(m_view, &WebView::flooding, this, &EngineBrowser::endFlood, Qt::QueuedConnection);
    connect(m_bar, &PageBar::agreed, this, &EngineBrowser::follow);
    m_pulse.setInterval(pulseMs);
    connect(&m_pulse, &QTimer::timeout, this, &EngineBrowser::feelPulse);
    m_pulse.start();
    connect(m_view, &WebView::reloading, this, [this] { showNotice(PageNotice::Crashed); });
    connect(m_view, &WebView::downloadAccepted, this, &EngineBrowser::addDownload);
    m_view->setUrl(blankPage());
}

EngineBrowser::~EngineBrowser()
{
    // A page that goes calls back for everything that it was still asked.
    delete m_view;
}

void EngineBrowser::setUrl(const QString& url)
{
    m_wanted = QUrl(url);
    m_closed = false;
    m_bytesBefore = Platform::residentBytes(QCoreApplication::applicationPid());
    m_unanswered.invalidate();
    m_bar->clear();
    m_notice->setAddress(url);
    m_view->setUrl(m_wanted);
    showNotice(PageNotice::Loading);
}

void EngineBrowser::showNotice(PageNotice::Kind kind)
{
    m_notice->setKind(kind);
    m_notice->show();
    m_notice->raise();
}

void EngineBrowser::handleLoadStarted()
{
    m_loading = true;
    m_progress->setVisible(true);
    m_progress->setValue(0);
}

void EngineBrowser::handleProgress(int percent)
{
    m_progress->setValue(percent);
    lookAtDocument();
}

void EngineBrowser::handleLoadFinished(bool ok)
{
    Q_UNUSED(ok)
    m_loading = false;
    m_progress->setVisible(false);
    lookAtDocument();
}

void EngineBrowser::lookAtDocument()
{
    const QPointer<EngineBrowser> self(this);
    // In a world of its own, where the page cannot put other words into our mouth.
    m_view->page()->runJavaScript(QStringLiteral("document.URL"),
                                  QWebEngineScript::ApplicationWorld,
                                  [self](const QVariant& address) {
                                      if (self)
                                          self->judgeDocument(QUrl(address.toString()));
                                  });
}

void EngineBrowser::judgeDocument(const QUrl& document)
{
    if (m_wanted.isEmpty() || m_closed)
        return;
    if (document.scheme() == QLatin1String("chrome-error")) {
        if (!m_loading)
            showNotice(PageNotice::Failed);
        return;
    }
    if (document.isEmpty() || document == blankPage()) {
        if (!m_loading)
            showNotice(PageNotice::NoPage);
        return;
    }
    // Until the wanted box answers, the view still holds the page of the one before.
    if (!m_loading || sameServer(document, m_wanted))
        m_notice->hide();
}

/// What drawing the page takes of this process: much on a large display, whatever the page holds.
qint64 EngineBrowser::drawingBytes() const
{
    const qreal ratio = m_view->devicePixelRatioF();
    return qint64(m_view->width() * ratio * m_view->height() * ratio) * Limits::PageBytesPerPixel;
}

/// What pages store off the record lies in the memory of this process.
bool EngineBrowser::isTooLarge() const
{
    const qint64 bytes = Platform::residentBytes(QCoreApplication::applicationPid());
    return bytes - m_bytesBefore > Limits::PageStoreBytes + drawingBytes() ||
           Platform::residentBytes(m_view->page()->renderProcessPid()) > Limits::PageProcessBytes;
}

void EngineBrowser::close(PageNotice::Kind reason)
{
    m_closed = true;
    m_bar->clear();
    m_view->discard();
    showNotice(reason);
}

void EngineBrowser::endFlood()
{
    if (m_wanted.isEmpty() || m_closed)
        return;
    limitReached(m_wanted.host(), QStringLiteral("messages of a page"));
    close(PageNotice::Closed);
}

void EngineBrowser::feelPulse()
{
    if (!m_wanted.isEmpty() && !m_closed && isTooLarge()) {
        limitReached(m_wanted.host(), QStringLiteral("memory of a page"));
        close(PageNotice::TooLarge);
    }
    // A page that shows a dialog stands still until it is answered.
    if (m_wanted.isEmpty() || m_closed || !isVisible() || m_view->isAsking()) {
        m_unanswered.invalidate();
        return;
    }
    if (m_unanswered.isValid()) {
        if (m_unanswered.elapsed() > patienceMs)
            m_bar->tell(PageBar::Unresponsive);
        return;
    }
    m_unanswered.start();
    const QPointer<EngineBrowser> self(this);
    m_view->page()->runJavaScript(QStringLiteral("0"), QWebEngineScript::ApplicationWorld,
                                  [self](const QVariant&) {
                                      if (!self)
                                          return;
                                      self->m_unanswered.invalidate();
                                      self->m_bar->take(PageBar::Unresponsive);
                                  });
}

void EngineBrowser::follow(PageBar::Kind kind, const QString& host)
{
    if (kind == PageBar::HostWanted) {
        m_view->allowHost(host);
    } else if (kind == PageBar::Unresponsive) {
        close(PageNotice::Closed);
    } else {
        setUrl(m_wanted.toString());
    }
}

void EngineBrowser::addDownload(QWebEngineDownloadItem* item)
{
    m_downloads->addWidget(new DownloadLine(item, this));
    for (int n = 0; n < m_downloads->count() && m_downloads->count() > mostDownloadLines; ++n) {
        auto* line = qobject_cast<DownloadLine*>(m_downloads->itemAt(n)->widget());
        if (line && line->hasEnded()) {
            delete line;
            return;
        }
    }
}
