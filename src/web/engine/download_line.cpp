// SPDX-License-Identifier: MIT
#include "web/engine/download_line.h"

#include "widgets/elided_label.h"

#include <QDir>
#include <QEvent>
#include <QHBoxLayout>
#include <QLocale>
#include <QPushButton>
#include <QStyle>

DownloadLine::DownloadLine(QWebEngineDownloadItem* item, QWidget* parent)
    : QWidget(parent)
    , m_item(item)
    , m_state(item->state())
    , m_name(new ElidedLabel(this))
    , m_text(new QLabel(this))
    , m_button(new QPushButton(this))
{
    m_text->setObjectName(QStringLiteral("downloadState"));
    m_text->setTextFormat(Qt::PlainText);
    m_button->setObjectName(QStringLiteral("downloadButton"));
    m_name->setText(QDir::toNativeSeparators(
        QDir(item->downloadDirectory()).filePath(item->downloadFileName())));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 4, 10, 4);
    layout->addWidget(m_name, 1);
    layout->addWidget(m_text);
    layout->addWidget(m_button);
    connect(item, &QWebEngineDownloadItem::downloadProgress, this, &DownloadLine::refresh);
    connect(item, &QWebEngineDownloadItem::stateChanged, this, &DownloadLine::refresh);
    connect(item, &QObject::destroyed, this, &DownloadLine::refresh);
    connect(m_button, &QPushButton::clicked, this, &DownloadLine::cancelOrClose);
    refresh();
}

void DownloadLine::cancelOrClose()
{
    if (!hasEnded() && m_item)
        m_item->cancel();
    else
        deleteLater();
}

void DownloadLine::refresh()
{
    if (m_item) {
        m_state = m_item->state();
        m_failure = m_item->interruptReasonString();
    } else if (!hasEnded()) {
        m_state = QWebEngineDownloadItem::DownloadCancelled;
    }
    m_text->setText(stateText());
    m_button->setText(hasEnded() ? tr("关闭") : tr("取消"));
    const char* look = m_state == QWebEngineDownloadItem::DownloadCompleted     ? "ok"
                       : m_state == QWebEngineDownloadItem::DownloadInterrupted ? "error"
                                                                                : "";
    if (m_text->property("state").toString() == QLatin1String(look))
        return;
    m_text->setProperty("state", QLatin1String(look));
    style()->polish(m_text);
}

QString DownloadLine::stateText() const
{
    switch (m_state) {
    case QWebEngineDownloadItem::DownloadCompleted:
        return tr("已保存");
    case QWebEngineDownloadItem::DownloadCancelled:
        return tr("已取消");
    case QWebEngineDownloadItem::DownloadInterrupted:
        return m_failure.isEmpty() ? tr("下载失败") : tr("下载失败（%1）").arg(m_failure);
    default:
        break;
    }
    const qint64 all = m_item ? m_item->totalBytes() : 0;
    const qint64 done = m_item ? m_item->receivedBytes() : 0;
    if (all > 0)
        return QStringLiteral("%1%").arg(qBound<qint64>(0, done * 100 / all, 100));
    return locale().formattedDataSize(done);
}

void DownloadLine::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        refresh();
    QWidget::changeEvent(event);
}
