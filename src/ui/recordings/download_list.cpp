// SPDX-License-Identifier: MIT
#include "ui/recordings/download_list.h"

#include "widgets/elided_label.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLocale>
#include <QProgressBar>
#include <QToolButton>

namespace
{

constexpr int rowHeight = 26;
constexpr int mostRowsShown = 4; ///< as many as come at once
constexpr int textMargin = 4;
constexpr int belowRows = 4; ///< else the last bar stands on the edge of the window

} // namespace

DownloadRow::DownloadRow(const QString& name, QWidget* parent)
    : QWidget(parent)
    , m_bar(new QProgressBar(this))
    , m_resume(addButton("resumeDownload", QStringLiteral(":/spark/img/play.svg")))
    , m_cancel(addButton("cancelDownload", QStringLiteral(":/spark/img/cancel.svg")))
{
    auto* label = new ElidedLabel(this);
    label->setText(name);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    connect(m_resume, &QToolButton::clicked, this, &DownloadRow::resumed);
    connect(m_cancel, &QToolButton::clicked, this, &DownloadRow::cancelled);
    m_resume->setAccessibleDescription(name);
    m_cancel->setAccessibleDescription(name);
    retranslate();

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 1, 8, 1);
    layout->addWidget(label, 1);
    layout->addWidget(m_bar, 1);
    layout->addWidget(m_resume);
    layout->addWidget(m_cancel);
    setFixedHeight(rowHeight);
}

QToolButton* DownloadRow::addButton(const char* name, const QString& icon)
{
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setIcon(QIcon(icon));
    button->setAutoRaise(true);
    return button;
}

void DownloadRow::setProgress(const DownloadProgress& progress)
{
    m_progress = progress;
    if (progress.broken)
        m_rate.reset();
    else
        m_rate.note(progress.received);
    setState(State::Running);
}

void DownloadRow::showWaiting()
{
    setState(State::Waiting);
}

void DownloadRow::showKept()
{
    setState(State::Kept);
}

void DownloadRow::setState(State state)
{
    m_state = state;
    if (state != State::Running)
        m_rate.reset();
    showState();
}

QString DownloadRow::size(qint64 bytes) const
{
    return locale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

/// As much of how far it is, and how fast it comes, as the bar has room for.
QString DownloadRow::runningText() const
{
    const bool isKnown = m_progress.total > 0;
    const QString percent = isKnown ? QStringLiteral("%p%") : QString();
    const QString amount = size(m_progress.received) +
                           (isKnown ? QStringLiteral(" / ") + size(m_progress.total) : QString());
    const qint64 perSecond = m_rate.perSecond();
    const QString rate = perSecond > 0 ? size(perSecond) + QStringLiteral("/s") : QString();
    const QVector<QStringList> wishes{{percent, amount, rate}, {percent, rate}, {percent, amount}};
    for (QStringList parts : wishes) {
        parts.removeAll(QString());
        const QString text = parts.join(QStringLiteral("  "));
        const QString widest = QString(text).replace(QLatin1String("%p%"), QLatin1String("100%"));
        if (m_bar->fontMetrics().horizontalAdvance(widest) <= m_bar->width() - 2 * textMargin)
            return text;
    }
    return isKnown ? percent : amount;
}

void DownloadRow::showState()
{
    // A server that does not tell the size leaves only what has come to be shown.
    const bool isKnown = m_progress.total > 0;
    const bool isStill = m_state != State::Running || m_progress.broken;
    const qint64 percent = isKnown ? m_progress.received * 100 / m_progress.total : 0;
    m_bar->setRange(0, isKnown || isStill ? 100 : 0);
    m_bar->setValue(int(qBound<qint64>(0, percent, 100)));
    m_resume->setVisible(m_state == State::Kept);
    if (m_state == State::Kept)
        m_bar->setFormat(tr("未下载完"));
    else if (m_state == State::Waiting)
        m_bar->setFormat(tr("等待下载"));
    else if (m_progress.broken)
        m_bar->setFormat(tr("正在重新连接") + QStringLiteral("  %p%"));
    else
        m_bar->setFormat(runningText());
}

void DownloadRow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void DownloadRow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    showState();
}

void DownloadRow::retranslate()
{
    m_cancel->setToolTip(tr("取消下载"));
    m_cancel->setAccessibleName(tr("取消下载"));
    m_resume->setToolTip(tr("继续下载"));
    m_resume->setAccessibleName(tr("继续下载"));
    showState();
}

DownloadList::DownloadList(QWidget* parent) : QScrollArea(parent)
{
    auto* content = new QWidget(this);
    m_rows = new QVBoxLayout(content);
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(0);
    m_rows->setAlignment(Qt::AlignTop);
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(NoFrame);
    setViewportMargins(0, 0, 0, belowRows);
    // The buttons of the rows take the keys, and bring their row into sight.
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    fitRows();
}

DownloadRow* DownloadList::addRow(const QString& name)
{
    auto* row = new DownloadRow(name, widget());
    m_rows->addWidget(row);
    ++m_count;
    fitRows();
    return row;
}

void DownloadList::removeRow(DownloadRow* row)
{
    m_rows->removeWidget(row);
    row->hide();
    row->deleteLater();
    --m_count;
    fitRows();
}

void DownloadList::fitRows()
{
    setFixedHeight(qMin(m_count, mostRowsShown) * rowHeight + belowRows);
    setVisible(m_count > 0);
}
