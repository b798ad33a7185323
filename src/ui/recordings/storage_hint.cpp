// SPDX-License-Identifier: MIT
#include "ui/recordings/storage_hint.h"

#include "ui/recordings/list_widget.h"

StorageHint::StorageHint(ListWidget* list) : ListHint(list)
{
    setObjectName(QStringLiteral("storage_hint"));
    refresh();
}

void StorageHint::setReason(Reason reason)
{
    m_reason = reason;
    refresh();
}

QString StorageHint::words() const
{
    return m_reason == Reason::Reading        ? tr("正在读取录制文件…")
           : m_reason == Reason::NoRecordings ? tr("此设备上没有录制文件。")
                                              : tr("无法读取录制文件。");
}
