// SPDX-License-Identifier: MIT
#include "media/ffmpeg_widget.h"

#include "common/living_folder.h"
#include "media/ffmpeg_session.h"
#include "media/ffmpeg_thread.h"
#include "media/figures_view.h"
#include "media/picture_notice.h"
#include "media/still_picture.h"
#include "widgets/key_text.h"
#include "widgets/message_box.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QStandardPaths>
#include <QStyleOption>
#include <QUrl>

namespace
{

/// What the context menu's actions carry.
enum MenuChoice { LocalFile = 1, NetworkAddress = 2 };

constexpr int clearDelayMs = 1;
/// How long the window waits for a thread that is in the midst of something, and how long for all
/// of them at its end.
constexpr unsigned long closeLimitMs = 30;
constexpr int endLimitMs = 500;
constexpr int watchPeriodMs = 200;
constexpr int figuresPeriodMs = 100;
/// After this long without a picture an operator has to know.
constexpr qint64 silenceMs = 2000;

QStringList filePatterns()
{
    // One of them twice, as in the list that users know.
    return QStringLiteral("*.mov *.mp4 *.m4a *.3gp *.3gp *.3g2 *.mj2").split(QLatin1Char(' '));
}

} // namespace

FFmpegWidget::FFmpegWidget(QWidget* parent)
    : QWidget(parent)
    , m_fileAction(m_menu.addAction(QString()))
    , m_addressAction(m_menu.addAction(QString()))
    , m_stillAction(m_menu.addAction(QString()))
    , m_figuresAction(m_menu.addAction(QString()))
    , m_stopAction(m_menu.addAction(QString()))
    , m_state(new PictureState(this))
    , m_figures(new FiguresView(this, m_state))
    , m_notice(new PictureNotice(this))
    , m_still(new StillPicture(this))
{
    // It fills what it paints, so nothing needs to be painted beneath.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            &FFmpegWidget::R_customContextMenuRequested);
    makeActions();
    m_clearTimer.setSingleShot(true);
    m_clearTimer.setInterval(clearDelayMs);
    connect(&m_clearTimer, &QTimer::timeout, this, &FFmpegWidget::clear);
    m_watch.setInterval(watchPeriodMs);
    connect(&m_watch, &QTimer::timeout, this, &FFmpegWidget::checkSource);
    m_figuresTimer.setInterval(figuresPeriodMs);
    connect(&m_figuresTimer, &QTimer::timeout, this, &FFmpegWidget::refreshFigures);
    connect(m_still, &StillPicture::saved, this, [this](const QString& path) {
        m_notice->tell(tr("已保存 %1").arg(QFileInfo(path).fileName()), false);
        emit stillSaved(path);
    });
    connect(m_still, &StillPicture::failed, this, [this](const QString& reason) {
        m_notice->tell(tr("无法保存画面：%1").arg(reason), true);
    });
    m_state->raise();
    retranslate();
}

void FFmpegWidget::makeActions()
{
    m_fileAction->setData(LocalFile);
    m_addressAction->setData(NetworkAddress);
    m_stillAction->setShortcut(Qt::Key_F9);
    m_stillAction->setAutoRepeat(false);
    m_stillAction->setEnabled(false);
    connect(m_stillAction, &QAction::triggered, this, &FFmpegWidget::saveStill);
    m_figuresAction->setShortcut(Qt::Key_F8);
    m_figuresAction->setAutoRepeat(false);
    m_figuresAction->setCheckable(true);
    connect(m_figuresAction, &QAction::toggled, this, &FFmpegWidget::refreshFigures);
    // Also what is opened again and again, which no button shows as playing.
    m_stopAction->setEnabled(false);
    connect(m_stopAction, &QAction::triggered, this, &FFmpegWidget::close);
    for (QAction* action : {m_stillAction, m_figuresAction}) {
        action->setShortcutVisibleInContextMenu(true);
        // The menu is no part of the window, and its keys work only while it is open.
        addAction(action);
    }
}

FFmpegWidget::~FFmpegWidget()
{
    releaseThread();
    const QDeadlineTimer end(endLimitMs);
    for (const QPointer<FFmpegThread>& thread : qAsConst(m_leaving)) {
        if (thread)
            thread->wait(end);
    }
}

int FFmpegWidget::droppedPictures() const
{
    return m_ffmpegThread ? m_ffmpegThread->droppedPictures() : 0;
}

void FFmpegWidget::updateImage(const QImage& image)
{
    m_image = image;
    m_natural = image.size();
    m_state->setOverPicture(!image.isNull());
    m_stillAction->setEnabled(!image.isNull());
    update();
}

void FFmpegWidget::open(const QString& url, MediaOptions::Origin origin)
{
    writePlayerLine(QStringLiteral("open video ") + url);
    releaseThread();
    m_url = url;
    const int session = ++m_session;
    m_hasPlayed = false;
    m_ffmpegThread = new FFmpegThread;
    connect(
        m_ffmpegThread, &FFmpegThread::receiveImage, this,
        [this, session](const QImage& image) { handleImage(session, image); },
        Qt::QueuedConnection);
    connect(
        m_ffmpegThread, &FFmpegThread::playstatus, this,
        [this, session](int status, const QString& source) {
            handleStatus(session, status, source);
        },
        Qt::QueuedConnection);
    m_ffmpegThread->setUrl(url);
    m_ffmpegThread->setOrigin(origin);
    m_ffmpegThread->setScreen(screen()->size() * devicePixelRatioF());
    m_ffmpegThread->setArea({size(), devicePixelRatioF()});
    m_ffmpegThread->play();
    m_watch.start();
    showState(PictureState::State::Opening);
    refreshFigures();
}

void FFmpegWidget::pause()
{
    if (m_ffmpegThread)
        m_ffmpegThread->stop();
}

void FFmpegWidget::close()
{
    writePlayerLine(QStringLiteral("close video ") + objectName());
    releaseThread();
    ++m_session;
    m_watch.stop();
    m_sourceName.clear();
    showState(PictureState::State::Idle);
    refreshFigures();
    m_clearTimer.start();
}

/// Pictures and words of the thread that are still under way stay valid without it.
void FFmpegWidget::releaseThread()
{
    if (!m_ffmpegThread)
        return;
    FFmpegThread* thread = m_ffmpegThread;
    m_ffmpegThread = nullptr;
    // What has failed and is not tried again is about to end by itself.
    if (thread->isRunning() && (state() != PictureState::State::Failed || m_state->tries() > 0))
        thread->stop();
    thread->requestStop();
    thread->quit();
    if (thread->wait(closeLimitMs)) {
        delete thread;
        return;
    }
    // Neither a large picture nor looking up a name can be interrupted. It ends by itself, and
    // nobody listens any more.
    m_leaving.removeAll(nullptr);
    m_leaving << thread;
    thread->disconnect(this);
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    if (thread->isFinished())
        thread->deleteLater();
}

void FFmpegWidget::clear()
{
    updateImage(QImage());
}

void FFmpegWidget::handleImage(int session, const QImage& image)
{
    if (session != m_session)
        return;
    m_clearTimer.stop();
    m_hasPlayed = true;
    updateImage(image);
    if (m_ffmpegThread)
        m_natural = m_ffmpegThread->shown().size();
    const bool isOver = m_ffmpegThread && m_ffmpegThread->isAtEnd() &&
                        state() == PictureState::State::Ended; // only in another size
    if (!isOver && state() != PictureState::State::Playing &&
        state() != PictureState::State::Stopped)
        showState(PictureState::State::Playing);
}

void FFmpegWidget::handleStatus(int session, int status, const QString& url)
{
    // Of a session that is over only its end is told.
    if (session != m_session && status != FFmpegThread::Stopped)
        return;
    if (session == m_session && status == FFmpegThread::OpenFailed)
        showState(PictureState::State::Failed);
    // It has come later; its first picture is about to.
    if (session == m_session && status == FFmpegThread::Playing &&
        state() == PictureState::State::Failed)
        showState(PictureState::State::Opening);
    if (session == m_session && status == FFmpegThread::Stopped)
        showState(PictureState::State::Stopped);
    emit playstatus(status, url);
}

/// A source that has broken off says nothing; only its silence tells.
void FFmpegWidget::checkSource()
{
    if (!m_ffmpegThread || state() == PictureState::State::Stopped)
        return;
    if (m_ffmpegThread->isFinished()) {
        // It has given up after tries that had been told as failed long ago.
        m_watch.stop();
        showState(PictureState::State::Failed);
        return;
    }
    // A window may have come to another screen.
    m_ffmpegThread->setArea({size(), devicePixelRatioF()});
    const qint64 silence = m_ffmpegThread->silentMs();
    const int tries = m_ffmpegThread->tries();
    // Nothing can be missed of a source that never had a picture.
    const PictureState::State kind =
        tries > 0 && !m_hasPlayed ? PictureState::State::Failed : PictureState::State::Silent;
    const bool isNew = state() != kind || m_state->tries() != tries;
    if (m_ffmpegThread->isAtEnd()) {
        if (state() != PictureState::State::Ended)
            showState(PictureState::State::Ended);
    } else if (silence > silenceMs && isNew) {
        m_state->show(kind, m_url, QTime::currentTime().addMSecs(-int(silence)), tries);
    }
}

void FFmpegWidget::showState(PictureState::State state)
{
    m_state->show(state, m_url);
    m_stopAction->setEnabled(state != PictureState::State::Idle);
}

void FFmpegWidget::saveStill()
{
    if (m_image.isNull())
        return;
    const ShownPicture shown = m_ffmpegThread ? m_ffmpegThread->shown() : ShownPicture();
    if (!shown.isNull())
        m_still->save([shown] { return shown.toImage(); }, stillName());
    else
        m_still->save([copy = m_image.copy()] { return copy; }, stillName());
}

QString FFmpegWidget::stillName() const
{
    const QString host = QUrl(m_url).host();
    const QString other = host.isEmpty() ? QFileInfo(m_url).completeBaseName() : host;
    return m_sourceName.isEmpty() ? other : m_sourceName;
}

void FFmpegWidget::showFigures(bool on)
{
    m_figuresAction->setChecked(on);
}

/// Sound is decoded only for who looks at it.
void FFmpegWidget::refreshFigures()
{
    const bool isWanted = m_figuresAction->isChecked() && m_ffmpegThread;
    if (m_ffmpegThread) {
        m_ffmpegThread->setSoundMeasured(isWanted);
        m_figures->setFigures(m_ffmpegThread->figures());
    }
    m_figures->setVisible(isWanted);
    if (!isWanted)
        m_figuresTimer.stop();
    else if (!m_figuresTimer.isActive())
        m_figuresTimer.start();
}

void FFmpegWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    const QRect target = m_image.isNull() ? QRect() : fittedRect(m_natural, size());
    const QRegion around = event->region() - target;
    if (!around.isEmpty()) {
        painter.setClipRegion(around);
        painter.fillRect(rect(), palette().window());
        style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
        painter.setClipping(false);
    }
    if (target.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform,
                          target.size() * devicePixelRatioF() != m_image.size());
    painter.drawImage(target, m_image);
}

void FFmpegWidget::resizeEvent(QResizeEvent* event)
{
    if (m_ffmpegThread)
        m_ffmpegThread->setArea({size(), devicePixelRatioF()});
    QWidget::resizeEvent(event);
}

void FFmpegWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void FFmpegWidget::retranslate()
{
    m_fileAction->setText(tr("播放本地文件"));
    m_addressAction->setText(tr("网络拉流地址"));
    m_stillAction->setText(tr("保存当前画面"));
    m_figuresAction->setText(tr("显示播放信息"));
    m_stopAction->setText(tr("停止播放"));
    QStringList keys;
    const QList<QAction*> known = actions();
    for (QAction* action : known) {
        action->setToolTip(withKey(action->text(), action->shortcut()));
        keys << action->toolTip();
    }
    setAccessibleDescription(keys.join(QStringLiteral(", ")));
}

void FFmpegWidget::R_customContextMenuRequested(const QPoint&)
{
    const QPointer<FFmpegWidget> self(this);
    const QAction* chosen = m_menu.exec(QCursor::pos());
    if (!self || !chosen)
        return;
    if (chosen->data().toInt() == LocalFile)
        playChosenFile();
    else if (chosen->data().toInt() == NetworkAddress)
        playTypedAddress();
}

void FFmpegWidget::playChosenFile()
{
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::PicturesLocation);
    const QPointer<FFmpegWidget> self(this);
    const QString folder = livingFolder(folders.value(folders.size() - 1));
    if (!self)
        return;
    const QPointer<QFileDialog> dialog(new QFileDialog(this, QString(), folder));
    dialog->setWindowTitle(tr("选择视频文件"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    const QStringList patterns = filePatterns();
    dialog->setNameFilters(QStringList(tr("视频文件 (%1)").arg(patterns.join(QLatin1Char(' ')))) +
                           patterns);
    dialog->setLabelText(QFileDialog::Accept, tr("选择视频文件"));
    dialog->setLabelText(QFileDialog::Reject, tr("取消"));
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    // With the window the dialog is gone, and so is this.
    if (!dialog)
        return;
    const QStringList files = dialog->selectedFiles();
    dialog->setDirectory(QDir::homePath());
    delete dialog;
    if (!isAccepted || files.isEmpty())
        return;
    close();
    open(files.first());
}

void FFmpegWidget::playTypedAddress()
{
    const QPointer<FFmpegWidget> self(this);
    const QString address = promptText(QString(), tr("请输入拉流的网络地址."), this);
    if (!self || address.isEmpty())
        return;
    close();
    open(address);
}
