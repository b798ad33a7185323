// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QWebEngineDownloadItem>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <memory>

class BoxWebPage;

/// The browser's view: keeps downloads, new windows and crashed pages of boxes inside the program.
/// Each one begins without the cookies and cached pages of those before.
class WebView : public QWebEngineView
{
    Q_OBJECT
    Q_PROPERTY(QString requestedUrl READ requestedUrl)

public:
    explicit WebView(QWidget* parent = nullptr);
    ~WebView() override;

    /// The text of the last address passed to setUrl().
    QString requestedUrl() const { return url; }

public slots:
    /// Loads a page; an empty address empties the view.
    void setUrl(const QUrl& url);
    void loadFinishedOK(bool ok);
    /// Asks where to save, serving events meanwhile.
    void webDownload(QWebEngineDownloadItem* item);
    void on_finished();
    void on_downloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void on_iconChanged(const QIcon& icon);
    void OnRenderProcessTerminated(QWebEnginePage::RenderProcessTerminationStatus status, int code);
    void R_urlChanged(const QUrl& url);

signals:
    /// A download has begun; the profile owns it.
    void downloadAccepted(QWebEngineDownloadItem* item);
    /// The page's process ended; it is loaded again at once.
    void reloading();

protected:
    QWebEngineView* createWindow(QWebEnginePage::WebWindowType type) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void applySettings();
    void makeDiskCache();
    void connectPage();
    void forgetEarlierVisits();
    void openInPlace(const QUrl& target);
    QString askTarget(const QString& name);

    QString url;
    std::unique_ptr<BoxWebPage> m_page;
    /// The last new window whose address is not known yet.
    QPointer<QWebEngineView> m_popup;
    QElapsedTimer m_sinceCrash;
    QElapsedTimer m_sinceDeclined;
    bool m_saveDialogOpen = false;
    QString m_saveFolder;
};
