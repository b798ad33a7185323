// SPDX-License-Identifier: MIT
#include "ui/recordings/storage_hint.h"

#include "ui/recordings/list_widget.h"

#include <QEvent>

StorageHint::StorageHint(ListWidget* list) : QLabel(list->viewport()), m_list(list)
{
    constexpr int margin = 16;
    setObjectName(QStringLiteral("storage_hint"));
    setProperty("dim", true);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(margin);
    const QAbstractItemModel* rows = list->model();
    connect(rows, &QAbstractItemModel::rowsInserted, this, &StorageHint::refresh);
    connect(rows, &QAbstractItemModel::rowsRemoved, this, &StorageHint::refresh);
    connect(rows, &QAbstractItemModel::modelReset, this, &StorageHint::refresh);
    list->viewport()->installEventFilter(this);
    refresh();
}

void StorageHint::setReason(Reason reason)
{
    m_reason = reason;
    refresh();
}

void StorageHint::refresh()
{
    setText(m_reason == Reason::Reading        ? tr("正在读取录制文件…")
            : m_reason == Reason::NoRecordings ? tr("此设备上没有录制文件.")
                                               : tr("无法读取录制文件."));
    setVisible(m_list->count() == 0);
    setGeometry(m_list->viewport()->rect());
}

void StorageHint::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        refresh();
    QLabel::changeEvent(event);
}

bool StorageHint::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(m_list->viewport()->rect());
    return QLabel::eventFilter(watched, event);
}
