// SPDX-License-Identifier: MIT
#include "web/web_pane.h"

#include <QDesktopServices>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QVariant>

WebPane::WebPane(QWidget* parent)
    : QWidget(parent)
    , m_notice(new QLabel(this))
    , m_address(new QLabel(this))
    , m_open(new QPushButton(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(16);
    layout->addStretch();
    m_notice->setProperty("dim", true);
    m_address->setTextFormat(Qt::PlainText);
    m_address->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_open->setProperty("primary", true);
    for (QWidget* widget : std::initializer_list<QWidget*>{m_notice, m_address, m_open})
        layout->addWidget(widget, 0, Qt::AlignCenter);
    layout->addStretch();
    connect(m_open, &QPushButton::clicked, this,
            [this] { QDesktopServices::openUrl(QUrl(m_url)); });
    retranslate();
}

void WebPane::setUrl(const QString& url)
{
    m_url = url;
    m_address->setText(url);
    m_open->setEnabled(!url.isEmpty());
}

void WebPane::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void WebPane::retranslate()
{
    m_notice->setText(tr("此设备通过自己的网页管理。"));
    m_open->setText(tr("在浏览器中打开"));
}
