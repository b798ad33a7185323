// SPDX-License-Identifier: MIT
#include "ui/window/tool_notice.h"

#include "common/loose_thread.h"
#include "common/platform.h"

#include <QBoxLayout>
#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QVariant>

namespace
{

constexpr int againMs = 5000;

QString fpingName()
{
    return QStringLiteral("fping");
}

QString curlName()
{
    return QStringLiteral("curl");
}

bool isProgram(const QString& path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

} // namespace

ToolNotice::ToolNotice(QBoxLayout* place, QString fping)
    : QFrame(place->parentWidget()), m_fping(std::move(fping)), m_text(new QLabel(this))
{
    setObjectName(QStringLiteral("tool_notice"));
    setProperty("areaTitle", true);
    m_text->setObjectName(QStringLiteral("tool_text"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setMinimumWidth(1); // a long path must not widen the list
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 8, 6);
    row->addWidget(m_text);
    m_again.setSingleShot(true);
    m_again.setInterval(againMs);
    connect(&m_again, &QTimer::timeout, this, &ToolNotice::look);
    hide();
    place->addWidget(this);
}

ToolNotice::~ToolNotice() = default;

void ToolNotice::start()
{
    look();
}

void ToolNotice::look()
{
    m_thread = std::make_unique<LooseThread>(QStringLiteral("tools"),
                                             [fping = m_fping](const std::atomic<bool>&) {
                                                 QStringList missing;
                                                 if (!isProgram(Platform::fpingPath(fping)))
                                                     missing << fpingName();
                                                 if (!isProgram(Platform::curlPath()))
                                                     missing << curlName();
                                                 return missing.join(QLatin1Char(' '));
                                             });
    connect(m_thread.get(), &LooseThread::done, this, &ToolNotice::show);
    m_thread->start();
}

void ToolNotice::show(const QString& missing)
{
    m_again.start();
    if (missing == m_missing)
        return;
    m_missing = missing;
    retranslate();
    setVisible(!missing.isEmpty());
}

void ToolNotice::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QFrame::changeEvent(event);
}

void ToolNotice::retranslate()
{
    QStringList lines;
    if (m_missing.contains(fpingName()))
        lines << (m_fping.isEmpty()
                      ? tr("未找到 fping，无法发现设备。请安装 fping 或重新安装本软件。")
                      : tr("未找到 %1，无法发现设备。请检查启动参数 --fping。").arg(m_fping));
    if (m_missing.contains(curlName()))
        lines << tr("未找到 curl，无法控制和升级设备。请安装 curl 或重新安装本软件。");
    m_text->setText(lines.join(QLatin1Char('\n')));
}
