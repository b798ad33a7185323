// SPDX-License-Identifier: MIT
#include "widgets/elided_label.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QString ElidedLabel::shownText() const
{
    QStringList lines = m_keepsLines ? text().split(QLatin1Char('\n')) : QStringList(text());
    const Qt::TextElideMode mode = m_keepsStart ? Qt::ElideRight : Qt::ElideMiddle;
    for (QString& line : lines)
        line = fontMetrics().elidedText(line.simplified(), mode, contentsRect().width());
    return lines.join(QLatin1Char('\n'));
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip)
        setToolTip(shownText() == text() ? QString()
                                         : QStringLiteral("<span style=\"white-space:pre-wrap\">") +
                                               text().toHtmlEscaped() + QStringLiteral("</span>"));
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawItemText(&painter, contentsRect(), int(alignment()), option.palette, isEnabled(),
                          shownText(), foregroundRole());
}
