// SPDX-License-Identifier: MIT
#include "web/engine/web_view.h"

#include "common/limits.h"
#include "common/platform.h"
#include "web/download_name.h"
#include "web/engine/box_web_page.h"
#include "web/engine/page_hosts.h"

#include <QContextMenuEvent>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QNetworkDiskCache>
#include <QNetworkProxyFactory>
#include <QStandardPaths>
#include <QTime>
#include <QTimer>
#include <QWebEngineCookieStore>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

namespace
{

/// A page that ends its process as soon as it loads may do so a few times a second, not more.
constexpr int crashPauseMs = 400;
constexpr int crashCalmMs = 3000;
/// Nobody clicks a download this soon after declining one: a page that asks again is not a user.
constexpr int declinedPauseMs = 1000;
/// After so many the page of this visit is not asked for again.
constexpr int mostDeclined = 3;

QString timeNow()
{
    return QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz"));
}

QString webCacheFolder()
{
    const QString folder =
        QStringLiteral("%1/%2").arg(Platform::dataRoot(), QStringLiteral("KESTRELMSG")) +
        QStringLiteral("/webcache");
    QDir().mkpath(folder);
    return folder;
}

QString usualSaveFolder()
{
    const QString downloads = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return QFileInfo(downloads).isDir() ? downloads : QDir::homePath();
}

} // namespace

WebView::WebView(QWidget* parent)
    : QWebEngineView(parent)
    , m_hosts(std::make_unique<PageHosts>())
    , m_saveFolder(usualSaveFolder())
{
    setWindowFlags(Qt::FramelessWindowHint);
    makeProfile();
    makePage();
    QNetworkProxyFactory::setUseSystemConfiguration(false);
    makeDiskCache();
    connectView();
    setAcceptDrops(false);
    forgetEarlierVisits();
}

WebView::~WebView()
{
    if (m_page->isAsking())
        m_page->retire();
    else
        delete m_page;
}

void WebView::makeProfile()
{
    // Off the record: what a page stores is in memory, and gone with the profile.
    m_profile = std::make_shared<QWebEngineProfile>();
    m_profile->setUrlRequestInterceptor(m_hosts.get());
    connect(m_profile.get(), &QWebEngineProfile::downloadRequested, this, &WebView::webDownload);
}

/// A page of its own for each visit: one that hangs or holds on is left by throwing it away.
void WebView::makePage()
{
    BoxWebPage* before = m_page;
    m_page = new BoxWebPage(m_profile, *m_hosts);
    connect(m_page, &QWebEnginePage::contentsSizeChanged, this, &WebView::contentChanged);
    connect(m_page, &BoxWebPage::loginsEnded, this, &WebView::loginsEnded);
    connect(m_page, &BoxWebPage::dialogsEnded, this, &WebView::dialogsEnded);
    connect(m_page, &BoxWebPage::flooding, this, &WebView::flooding);
    m_page->setBackgroundColor(Qt::darkGray);
    setPage(m_page);
    applySettings();
    if (!before)
        return;
    before->disconnect(this);
    before->retire();
    // It was opened by that page, and would go on after it.
    if (m_popup)
        m_popup->deleteLater();
    m_popup.clear();
}

void WebView::applySettings()
{
    QWebEngineSettings* settings = page()->settings();
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, true);
    settings->setAttribute(QWebEngineSettings::JavascriptEnabled, true);
    settings->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, true);
    settings->setAttribute(QWebEngineSettings::LocalStorageEnabled, true);
    // Who walks through the device list by keyboard stays there.
    settings->setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
    // The pane tells by it that a page could not be loaded, and covers it with its own words.
    settings->setAttribute(QWebEngineSettings::ErrorPageEnabled, true);
    settings->setUnknownUrlSchemePolicy(QWebEngineSettings::DisallowUnknownUrlSchemes);
}

void WebView::makeDiskCache()
{
    auto* cache = new QNetworkDiskCache(this);
    cache->setCacheDirectory(webCacheFolder());
}

void WebView::connectView()
{
    connect(this, &QWebEngineView::loadFinished, this, &WebView::loadFinishedOK);
    connect(this, &QWebEngineView::titleChanged, this, &QWidget::setWindowTitle);
    connect(this, &QWebEngineView::iconChanged, this, &WebView::on_iconChanged);
    connect(this, &QWebEngineView::renderProcessTerminated, this,
            &WebView::OnRenderProcessTerminated);
    connect(this, &QWebEngineView::urlChanged, this, &WebView::R_urlChanged);
}

void WebView::forgetEarlierVisits()
{
    m_profile->setHttpCacheMaximumSize(Limits::PageCacheBytes);
    m_profile->clearHttpCache();
    m_profile->cookieStore()->deleteAllCookies();
}

void WebView::setUrl(const QUrl& wanted)
{
    url = wanted.toString();
    qDebug().noquote() << "加载网页开始 " << url << timeNow();
    m_hosts->begin(wanted);
    m_declined = 0;
    makePage();
    m_page->keepToHosts();
    load(wanted.isEmpty() ? QUrl(QStringLiteral("about:blank")) : wanted);
}

void WebView::allowHost(const QString& host)
{
    m_hosts->allow(host);
    m_page->keepToHosts();
    if (m_page->refused().host() == host)
        load(m_page->refused());
    else
        reload();
}

void WebView::discard()
{
    makeProfile();
    forgetEarlierVisits();
    setUrl(QUrl());
}

bool WebView::isAsking() const
{
    return m_saveDialogOpen || m_page->isAsking();
}

void WebView::loadFinishedOK(bool ok)
{
    qDebug().noquote() << "加载网页完成 " << ok << url << timeNow();
}

void WebView::R_urlChanged(const QUrl& changed)
{
    qDebug().noquote() << "R_urlChanged  " << changed.toString();
}

void WebView::on_iconChanged(const QIcon& icon)
{
    setWindowIcon(icon);
}

void WebView::OnRenderProcessTerminated(QWebEnginePage::RenderProcessTerminationStatus, int)
{
    const bool again = m_sinceCrash.isValid() && m_sinceCrash.elapsed() < crashCalmMs;
    m_sinceCrash.start();
    emit reloading();
    // After the signal: the engine is still clearing up the old process.
    QTimer::singleShot(again ? crashPauseMs : 0, this, &WebView::loadAgain);
}

/// In a new page: the engine does not always bring one back to life whose process has ended.
void WebView::loadAgain()
{
    const QUrl last = page()->url();
    makePage();
    m_page->keepToHosts();
    load(last);
}

QWebEngineView* WebView::createWindow(QWebEnginePage::WebWindowType)
{
    // One is enough; a page that opens windows without end keeps only the last.
    if (m_popup)
        m_popup->deleteLater();
    auto* popup = new QWebEngineView(parentWidget());
    m_popup = popup;
    auto* popupPage = new PopupPage(m_profile, *m_hosts);
    popup->setPage(popupPage);
    connect(popup, &QObject::destroyed, popupPage, &QObject::deleteLater);
    connect(popupPage, &PopupPage::targetKnown, this, &WebView::openInPlace);
    connect(popup, &QWebEngineView::urlChanged, this, &WebView::openInPlace);
    return popup;
}

void WebView::openInPlace(const QUrl& target)
{
    if (!m_popup || target.isEmpty() || target.scheme() == QLatin1String("about"))
        return;
    m_popup->deleteLater();
    m_popup.clear();
    // It goes on in the page that opened it, which is in the midst of doing so.
    url = target.toString();
    load(target);
}

void WebView::webDownload(QWebEngineDownloadItem* item)
{
    if (item->state() != QWebEngineDownloadItem::DownloadRequested)
        return;
    const bool insistent = m_sinceDeclined.isValid() && m_sinceDeclined.elapsed() < declinedPauseMs;
    if (m_saveDialogOpen || insistent || !isVisible() || m_declined >= mostDeclined) {
        item->cancel();
        if (m_declined >= mostDeclined && isVisible())
            emit dialogsEnded();
        return;
    }
    const QPointer<WebView> self(this);
    const QPointer<QWebEngineDownloadItem> download(item);
    const QString path = askTarget(offeredName(item->suggestedFileName()));
    if (!self || !download)
        return;
    if (path.isEmpty()) {
        m_sinceDeclined.start();
        ++m_declined;
        item->cancel();
        return;
    }
    const QFileInfo target(path);
    m_saveFolder = target.absolutePath();
    item->setDownloadDirectory(target.absolutePath());
    item->setDownloadFileName(target.fileName());
    connect(item, &QWebEngineDownloadItem::finished, this, &WebView::on_finished);
    connect(item, &QWebEngineDownloadItem::downloadProgress, this, &WebView::on_downloadProgress);
    item->accept();
    emit downloadAccepted(item);
}

QString WebView::askTarget(const QString& name)
{
    const QPointer<WebView> self(this);
    m_saveDialogOpen = true;
    const QString path = QFileDialog::getSaveFileName(
        nullptr, tr("另存为"), QDir(m_saveFolder).filePath(name), saveFilter(name));
    if (self)
        m_saveDialogOpen = false;
    return path;
}

void WebView::on_finished() {}

void WebView::on_downloadProgress(qint64, qint64) {}

void WebView::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu menu;
    const auto add = [this, &menu](QWebEnginePage::WebAction action, const QString& text) {
        QAction* wanted = pageAction(action);
        wanted->setText(text);
        menu.addAction(wanted);
    };
    add(QWebEnginePage::Back, tr("后退"));
    add(QWebEnginePage::Forward, tr("前进"));
    add(QWebEnginePage::Reload, tr("重新加载"));
    menu.addSeparator();
    add(QWebEnginePage::Cut, tr("剪切"));
    add(QWebEnginePage::Copy, tr("复制"));
    add(QWebEnginePage::Paste, tr("粘贴"));
    menu.exec(event->globalPos());
}

void WebView::hideEvent(QHideEvent* event)
{
    m_page->dismissDialog();
    QWebEngineView::hideEvent(event);
}
