// SPDX-License-Identifier: MIT
#include "ui/window/crash_notice.h"

#include "crash/crash_dumps.h"

#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QThread>
#include <QToolButton>
#include <QUrl>
#include <QVariant>

CrashNotice::CrashNotice(QBoxLayout* place)
    : QFrame(place->parentWidget())
    , m_text(new QLabel(this))
    , m_open(new QPushButton(this))
    , m_close(new QToolButton(this))
{
    setObjectName(QStringLiteral("crash_notice"));
    setProperty("areaTitle", true);
    m_text->setObjectName(QStringLiteral("crash_text"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_open->setObjectName(QStringLiteral("crash_open"));
    m_close->setObjectName(QStringLiteral("crash_close"));
    m_close->setIcon(QIcon(QStringLiteral(":/spark/img/dismiss.svg")));
    m_close->setAutoRaise(true);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 8, 6);
    row->setSpacing(8);
    row->addWidget(m_text, 1);
    row->addWidget(m_open);
    row->addWidget(m_close);
    connect(m_open, &QPushButton::clicked, this, &CrashNotice::openFolder);
    connect(m_close, &QToolButton::clicked, this, &QWidget::hide);
    retranslate();
    hide();
    place->addWidget(this);
}

CrashNotice::~CrashNotice()
{
    if (m_thread)
        m_thread->wait();
}

void CrashNotice::start(const QString& folder)
{
    if (folder.isEmpty() || m_thread)
        return;
    m_folder = folder;
    m_text->setToolTip(QDir::toNativeSeparators(folder));
    m_thread.reset(QThread::create([this, folder] {
        CrashDumps::prune(folder);
        if (!CrashDumps::takeNew(folder).isEmpty())
            QMetaObject::invokeMethod(this, &QWidget::show, Qt::QueuedConnection);
    }));
    m_thread->setObjectName(QStringLiteral("crash dumps"));
    m_thread->start(QThread::LowPriority);
}

void CrashNotice::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QFrame::changeEvent(event);
}

void CrashNotice::retranslate()
{
    m_text->setText(tr("软件上次异常退出。"));
    m_open->setText(tr("查看崩溃记录"));
    m_close->setToolTip(tr("关闭"));
    m_close->setAccessibleName(m_close->toolTip());
}

void CrashNotice::openFolder()
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(m_folder));
}
