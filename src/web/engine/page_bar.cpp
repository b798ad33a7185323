// SPDX-License-Identifier: MIT
#include "web/engine/page_bar.h"

#include "web/engine/page_dialog.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

namespace
{

QString saying(PageBar::Kind kind, const QString& host)
{
    switch (kind) {
    case PageBar::HostWanted:
        return PageBar::tr("此网页想访问另一台主机：%1").arg(PageDialog::shortHost(host));
    case PageBar::LoginsEnded:
        return PageBar::tr("此网页多次要求登录，不再询问。");
    case PageBar::DialogsEnded:
        return PageBar::tr("此网页打开了太多对话框，不再显示。");
    case PageBar::Unresponsive:
        break;
    }
    return PageBar::tr("此网页没有响应。");
}

QString offer(PageBar::Kind kind)
{
    if (kind == PageBar::HostWanted)
        return PageBar::tr("允许");
    return kind == PageBar::Unresponsive ? PageBar::tr("关闭网页") : PageBar::tr("重新加载");
}

} // namespace

PageBar::PageBar(QWidget* parent)
    : QWidget(parent)
    , m_text(new QLabel(this))
    , m_yes(new QPushButton(this))
    , m_no(new QPushButton(this))
{
    setObjectName(QStringLiteral("pageBar"));
    m_text->setObjectName(QStringLiteral("pageBarText"));
    m_yes->setObjectName(QStringLiteral("pageBarYes"));
    m_no->setObjectName(QStringLiteral("pageBarNo"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 4, 10, 4);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_yes);
    layout->addWidget(m_no);
    connect(m_yes, &QPushButton::clicked, this, [this] { finish(true); });
    connect(m_no, &QPushButton::clicked, this, [this] { finish(false); });
    refresh();
}

void PageBar::tell(Kind kind, const QString& host)
{
    const Matter matter{kind, host};
    if (m_matters.contains(matter))
        return;
    m_matters << matter;
    refresh();
}

void PageBar::take(Kind kind)
{
    m_matters.erase(std::remove_if(m_matters.begin(), m_matters.end(),
                                   [kind](const Matter& matter) { return matter.kind == kind; }),
                    m_matters.end());
    refresh();
}

void PageBar::clear()
{
    m_matters.clear();
    refresh();
}

void PageBar::finish(bool agree)
{
    const Matter matter = m_matters.takeFirst();
    refresh();
    if (agree)
        emit agreed(matter.kind, matter.host);
}

void PageBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        refresh();
    QWidget::changeEvent(event);
}

void PageBar::refresh()
{
    setVisible(!m_matters.isEmpty());
    if (m_matters.isEmpty())
        return;
    const Matter& matter = m_matters.first();
    m_text->setText(saying(matter.kind, matter.host));
    m_yes->setText(offer(matter.kind));
    m_no->setText(matter.kind == HostWanted     ? tr("不允许")
                  : matter.kind == Unresponsive ? tr("等待")
                                                : tr("关闭"));
}
