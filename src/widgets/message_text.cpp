// SPDX-License-Identifier: MIT
#include "widgets/message_text.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextDocument>
#include <QtMath>

#include <memory>

MessageText::MessageText(QWidget* parent) : QTextEdit(parent)
{
    setReadOnly(true);
    setAcceptRichText(false);
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

void MessageText::showEvent(QShowEvent* event)
{
    QTextEdit::showEvent(event);
    // The base class brings its cursor into sight: before the final layout, that scrolls past the
    // beginning.
    verticalScrollBar()->setValue(0);
}

void MessageText::resizeEvent(QResizeEvent* event)
{
    QTextEdit::resizeEvent(event);
    fitHeight();
}

void MessageText::changeEvent(QEvent* event)
{
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitHeight();
}

/// Measured as without a scroll bar: the bar that a height brings about must not change the height
/// again.
void MessageText::fitHeight()
{
    const std::unique_ptr<QTextDocument> measured(document()->clone());
    measured->setTextWidth(maximumViewportSize().width());
    const QMargins around = contentsMargins() + viewportMargins();
    const int height = qCeil(measured->size().height()) + around.top() + around.bottom();
    setMaximumHeight(qMin(height, QWIDGETSIZE_MAX));
}
