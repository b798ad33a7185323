// SPDX-License-Identifier: MIT
#include "web/web_pane.h"

#include "web/browser.h"
#include "web/page_notice.h"

#include <QStackedLayout>
#include <QTimer>

namespace
{

PageNotice::Kind noticeOf(BrowserObstacle obstacle)
{
    switch (obstacle) {
    case BrowserObstacle::None:
        return PageNotice::Loading;
    case BrowserObstacle::RunsAsRoot:
        return PageNotice::RunsAsRoot;
    case BrowserObstacle::NoIsolation:
        return PageNotice::NoIsolation;
    case BrowserObstacle::EngineMissing:
        return PageNotice::EngineMissing;
    case BrowserObstacle::NotBuilt:
        break;
    }
    return PageNotice::External;
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
    const BrowserObstacle obstacle = browserObstacle();
    m_notice->setKind(noticeOf(obstacle));
    return obstacle == BrowserObstacle::None;
}

void WebPane::showInBrowser()
{
    m_starting = false;
    // The operator may have gone on to a box without a page.
    if (m_url.isEmpty())
        return;
    m_browser = createBrowser(this);
    m_browser->setUrl(m_url);
    m_pages->addWidget(m_browser);
    m_pages->setCurrentWidget(m_browser);
}
