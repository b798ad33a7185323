// SPDX-License-Identifier: MIT
#include "web/page_notice.h"

#include <QDesktopServices>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QVariant>

PageNotice::PageNotice(QWidget* parent)
    : QWidget(parent)
    , m_message(new QLabel(this))
    , m_reason(new QLabel(this))
    , m_address(new QLabel(this))
    , m_retry(new QPushButton(this))
    , m_open(new QPushButton(this))
{
    setObjectName(QStringLiteral("pageNotice"));
    setProperty("area", true);
    setAttribute(Qt::WA_StyledBackground);
    m_message->setObjectName(QStringLiteral("webMessage"));
    m_reason->setObjectName(QStringLiteral("webReason"));
    m_address->setObjectName(QStringLiteral("webAddress"));
    m_retry->setObjectName(QStringLiteral("webRetry"));
    m_open->setObjectName(QStringLiteral("webOpen"));
    for (QLabel* label : {m_message, m_reason}) {
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
    }
    m_reason->setProperty("dim", true);
    m_address->setTextFormat(Qt::PlainText);
    m_address->setAlignment(Qt::AlignCenter);
    m_address->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_open->setProperty("primary", true);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    buttons->addWidget(m_retry);
    buttons->addWidget(m_open);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(16);
    layout->addStretch();
    for (QLabel* label : {m_message, m_reason, m_address})
        layout->addWidget(label);
    layout->addLayout(buttons);
    layout->addStretch();

    connect(m_retry, &QPushButton::clicked, this, &PageNotice::retry);
    connect(m_open, &QPushButton::clicked, this, &PageNotice::openExternally);
    retranslate();
}

void PageNotice::setKind(Kind kind)
{
    m_kind = kind;
    retranslate();
}

void PageNotice::setAddress(const QString& url)
{
    m_url = url;
    m_address->setText(url);
    m_open->setEnabled(!url.isEmpty());
}

void PageNotice::openExternally()
{
    QDesktopServices::openUrl(QUrl(m_url));
}

void PageNotice::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void PageNotice::retranslate()
{
    m_message->setText(message());
    m_reason->setText(reason());
    m_reason->setVisible(!m_reason->text().isEmpty());
    m_retry->setText(tr("重试"));
    m_open->setText(tr("在浏览器中打开"));
    m_retry->setVisible(m_kind == Failed || m_kind == NoPage || m_kind == Closed ||
                        m_kind == TooLarge);
    m_open->setVisible(m_kind != Loading && m_kind != Crashed);
}

QString PageNotice::message() const
{
    switch (m_kind) {
    case Loading:
        return tr("正在打开设备的网页…");
    case Failed:
        return tr("无法打开设备的网页。");
    case NoPage:
        return tr("设备没有返回可显示的网页。");
    case Crashed:
        return tr("网页意外终止，正在重新加载…");
    case Closed:
    case TooLarge:
        return tr("网页已关闭。");
    default:
        return tr("此设备通过自己的网页管理。");
    }
}

QString PageNotice::reason() const
{
    switch (m_kind) {
    case Failed:
        return tr("请检查设备的电源和网络连接。");
    case TooLarge:
        return tr("它占用了过多内存。");
    case NotInstalled:
        return tr("内置浏览器不可用：它没有安装。");
    case RunsAsRoot:
        return tr("内置浏览器不可用：它的安全沙箱不允许以 root 身份运行。");
    case NoIsolation:
        return tr("内置浏览器不可用：系统没有为它提供安全沙箱。");
    case Incomplete:
        return tr("内置浏览器不可用：它的程序文件不完整。");
    default:
        return QString();
    }
}
