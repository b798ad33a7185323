// SPDX-License-Identifier: MIT
#pragma once

#include "media/media_options.h"
#include "media/picture_state.h"

#include <QImage>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QVector>
#include <QWidget>

class FFmpegThread;
class FiguresView;
class PictureNotice;
class StillPicture;

/// The monitor's picture area: plays one source at a time, fitted and centred, and says over the
/// picture when it is not a live one. Its context menu plays a local file or a network address; it
/// asks for them in dialogs that block, serving events. F9 saves what is shown, F8 shows the
/// source's figures, wherever the focus is in the window.
/// GUI thread only.
class FFmpegWidget : public QWidget
{
    Q_OBJECT

public:
    explicit FFmpegWidget(QWidget* parent = nullptr);
    ~FFmpegWidget() override;

    /// What shows: whether the picture is live, and if not, why.
    PictureState::State state() const { return m_state->state(); }
    /// The picture shown, in the size in which it is; null when there is none.
    const QImage& picture() const { return m_image; }
    /// Pictures that this session did not show because newer ones came first.
    int droppedPictures() const;
    /// What stills of the next source are named after, until close(). Without it they are named
    /// after its host or file.
    void setSourceName(const QString& name) { m_sourceName = name; }

signals:
    /// The picture that saveStill() took is the file `path`.
    void stillSaved(const QString& path);
    /// As FFmpegThread::playstatus: 0 the source cannot be opened, 1 it plays, 2 it was stopped.
    void playstatus(int status, const QString& url);

public slots:
    void updateImage(const QImage& image);
    void R_customContextMenuRequested(const QPoint& pos);
    /// Plays a path or an address, as far as `origin` lets it. A session still running ends first.
    void open(const QString& url, MediaOptions::Origin origin = MediaOptions::Origin::Operator);
    /// Ends the session and keeps the picture, marked as stopped; open() starts anew.
    void pause();
    void next() {} ///< does nothing
    /// Ends the session, if there is one, and wipes the picture a moment later. Returns when the
    /// source is closed, after half a second at most.
    void close();
    /// Wipes the picture.
    void clear();
    /// Saves what is shown among the operator's pictures and says so over the picture; without a
    /// picture it does nothing.
    void saveStill();
    /// Shows or hides the source's figures, also of sources to come.
    void showFigures(bool on);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void handleImage(int session, const QImage& image);
    void handleStatus(int session, int status, const QString& url);
    void releaseThread();
    void checkSource();
    void showState(PictureState::State state);
    void makeActions();
    void refreshFigures();
    QString stillName() const;
    void retranslate();
    void playChosenFile();
    void playTypedAddress();

    FFmpegThread* m_ffmpegThread = nullptr;
    QVector<QPointer<FFmpegThread>> m_leaving; ///< that had not ended when they were let go
    QImage m_image;
    QSize m_natural; ///< of the picture that m_image may be a smaller image of
    QMenu m_menu;
    QAction* m_fileAction;
    QAction* m_addressAction;
    QAction* m_stillAction;
    QAction* m_figuresAction;
    QAction* m_stopAction;
    PictureState* m_state;
    FiguresView* m_figures;
    PictureNotice* m_notice;
    StillPicture* m_still;
    QString m_url;
    QString m_sourceName;
    int m_session = 0;        // what a queued signal belongs to
    bool m_hasPlayed = false; ///< a picture of the address of now has come
    QTimer m_clearTimer;
    QTimer m_watch;
    QTimer m_figuresTimer;
};
