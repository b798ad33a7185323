// SPDX-License-Identifier: MIT
#pragma once

#include "web/browser.h"
#include "web/engine/page_bar.h"
#include "web/page_notice.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QUrl>

class QProgressBar;
class QVBoxLayout;
class QWebEngineDownloadItem;
class WebView;

/// The browser: the view, above it what is to be said of its page, over it a notice whenever the
/// view does not show the wanted box, a thin bar while something loads, and a line per download.
class EngineBrowser : public Browser
{
    Q_OBJECT

public:
    explicit EngineBrowser(QWidget* parent);
    ~EngineBrowser() override;

    void setUrl(const QString& url) override;

private:
    void showNotice(PageNotice::Kind kind);
    void handleLoadStarted();
    void handleProgress(int percent);
    void handleLoadFinished(bool ok);
    /// Finds out what the view holds by now, and uncovers or covers it.
    void lookAtDocument();
    void judgeDocument(const QUrl& document);
    void endFlood();
    /// Finds out whether the page is still alive.
    void feelPulse();
    qint64 drawingBytes() const;
    bool isTooLarge() const;
    void close(PageNotice::Kind reason);
    void follow(PageBar::Kind kind, const QString& host);
    void addDownload(QWebEngineDownloadItem* item);

    QProgressBar* m_progress;
    PageBar* m_bar;
    WebView* m_view;
    PageNotice* m_notice;
    QVBoxLayout* m_downloads;
    QUrl m_wanted; ///< what the user chose; links in its page do not change it
    bool m_loading = false;
    bool m_closed = false;    ///< instead of its page, why there is none
    qint64 m_bytesBefore = 0; ///< of this process, when the visit began
    QTimer m_pulse;
    QElapsedTimer m_unanswered; ///< since the page was asked for a sign; invalid: it has answered
};
