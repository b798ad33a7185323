// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QWebEngineDownloadItem>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <memory>

class BoxWebPage;
class PageHosts;
class QWebEngineProfile;

/// The browser's view: keeps downloads, new windows and crashed pages of boxes inside the program,
/// and a page with its own box. Nothing of a page is written to the disk but what the user saves.
class WebView : public QWebEngineView
{
    Q_OBJECT
    Q_PROPERTY(QString requestedUrl READ requestedUrl)

public:
    explicit WebView(QWidget* parent = nullptr);
    ~WebView() override;

    /// The text of the last address passed to setUrl().
    QString requestedUrl() const { return url; }

    /// Whom the page may talk to.
    PageHosts& hosts() { return *m_hosts; }
    /// The operator lets the page of this visit have the host.
    void allowHost(const QString& host);
    /// Ends the page and forgets everything that pages have stored.
    void discard();
    /// Whether the user is being asked something for the page, which waits for it.
    bool isAsking() const;

public slots:
    /// Loads a page in place of the one before, which has no say in it; an empty address empties
    /// the view.
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
    /// There is something else to see in the page.
    void contentChanged();
    /// From now on the page is asked for no login, or shows no dialogs.
    void loginsEnded();
    void dialogsEnded();
    /// The page says more than the window can bear.
    void flooding();

protected:
    QWebEngineView* createWindow(QWebEnginePage::WebWindowType type) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void applySettings();
    void makeProfile();
    void makePage();
    void makeDiskCache();
    void connectView();
    void forgetEarlierVisits();
    void openInPlace(const QUrl& target);
    void loadAgain();
    QString askTarget(const QString& name);

    QString url;
    std::unique_ptr<PageHosts> m_hosts;
    std::shared_ptr<QWebEngineProfile> m_profile;
    BoxWebPage* m_page = nullptr;
    int m_declined = 0; ///< downloads during this visit
    /// The last new window whose address is not known yet.
    QPointer<QWebEngineView> m_popup;
    QElapsedTimer m_sinceCrash;
    QElapsedTimer m_sinceDeclined;
    bool m_saveDialogOpen = false;
    QString m_saveFolder;
};
