// SPDX-License-Identifier: MIT
#include "web/web_pane.h"

#include "web/browser.h"
#include "web/browser_engine.h"
#include "web/page_notice.h"

#include <QStackedLayout>
#include <QTimer>

namespace
{

PageNotice::Kind noticeOf(BrowserEngine::Obstacle obstacle)
{
    switch (obstacle) {
    case BrowserEngine::Obstacle::NotInstalled:
        return PageNotice::NotInstalled;
    case BrowserEngine::Obstacle::RunsAsRoot:
        return PageNotice::RunsAsRoot;
    case BrowserEngine::Obstacle::NoIsolation:
        return PageNotice::NoIsolation;
    case BrowserEngine::Obstacle::Incomplete:
        return PageNotice::Incomplete;
    case BrowserEngine::Obstacle::None:
        break;
    }
    return PageNotice::Loading;
}

/// Enough for the notice to be painted before the engine takes the thread for a moment.
constexpr int paintMs = 30;

} // namespace

WebPane::WebPane(QWidget* parent)
    : QWidget(parent), m_pages(new QStackedLayout(this)), m_notice(new PageNotice(this))
{
    m_pages->addWidget(m_notice);
}

void WebPane::setUrl(const QString& url)
{
    m_url = url;
    m_notice->setAddress(url);
    if (m_browser)
        m_browser->setUrl(url);
    else if (!url.isEmpty() && !m_starting && mayBrowse()) {
        m_starting = true;
        QTimer::singleShot(paintMs, this, &WebPane::showInBrowser);
    }
}

bool WebPane::mayBrowse()
{
    const BrowserEngine::Obstacle obstacle = BrowserEngine::obstacle();
    m_notice->setKind(noticeOf(obstacle));
    return obstacle == BrowserEngine::Obstacle::None;
}

void WebPane::showInBrowser()
{
    m_starting = false;
    // The operator may have gone on to a box without a page.
    if (m_url.isEmpty())
        return;
    m_browser = BrowserEngine::createBrowser(this);
    if (!m_browser) {
        m_notice->setKind(PageNotice::Incomplete);
        return;
    }
    m_browser->setUrl(m_url);
    m_pages->addWidget(m_browser);
    m_pages->setCurrentWidget(m_browser);
}
