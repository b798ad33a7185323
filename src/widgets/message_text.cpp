// SPDX-License-Identifier: MIT
#include "widgets/message_text.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>
#include <QtMath>

MessageText::MessageText(QWidget* parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &MessageText::fitHeight);
}

void MessageText::setText(const QString& text)
{
    setPlainText(text);
    fitHeight();
}

QString MessageText::text() const
{
    return toPlainText();
}

void MessageText::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    fitHeight();
}

void MessageText::changeEvent(QEvent* event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fitHeight();
    }
}

int MessageText::textHeight(int limit) const
{
    const QAbstractTextDocumentLayout* layout = document()->documentLayout();
    qreal height = 2 * document()->documentMargin();
    for (QTextBlock block = document()->begin(); block.isValid() && height < limit;
         block = block.next()) {
        height += layout->blockBoundingRect(block).height();
    }
    return qMin(qCeil(height), limit);
}

void MessageText::fitHeight()
{
    // A longer text need not be measured to its end: no dialog of ours is taller than this.
    constexpr int Limit = 2000;
    const QMargins around = contentsMargins() + viewportMargins();
    setMaximumHeight(textHeight(Limit) + around.top() + around.bottom());
}
