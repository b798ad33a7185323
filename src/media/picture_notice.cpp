// SPDX-License-Identifier: MIT
#include "media/picture_notice.h"

#include "widgets/elided_label.h"

#include <QEvent>
#include <QStyle>
#include <QVBoxLayout>
#include <QVariant>

namespace
{

constexpr int noticeEdge = 12;
constexpr int noticeMs = 4000;
/// Who has to read why something failed needs longer.
constexpr int badNoticeMs = 8000;

} // namespace

PictureNotice::PictureNotice(QWidget* area) : QWidget(area), m_text(new ElidedLabel(this))
{
    setObjectName(QStringLiteral("video_notice"));
    setAttribute(Qt::WA_StyledBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_text->setObjectName(QStringLiteral("video_notice_text"));
    m_text->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(noticeEdge, noticeEdge, noticeEdge, noticeEdge);
    layout->addWidget(m_text);
    hide();
    m_end.setSingleShot(true);
    connect(&m_end, &QTimer::timeout, this, &QWidget::hide);
    area->installEventFilter(this);
}

void PictureNotice::tell(const QString& text, bool isBad)
{
    m_text->setProperty("state", isBad ? QStringLiteral("error") : QString());
    m_text->style()->unpolish(m_text);
    m_text->style()->polish(m_text);
    m_text->setText(text);
    place();
    show();
    raise();
    m_end.start(isBad ? badNoticeMs : noticeMs);
}

bool PictureNotice::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}

void PictureNotice::place()
{
    const QRect area =
        parentWidget()->rect().adjusted(noticeEdge, noticeEdge, -noticeEdge, -noticeEdge);
    ensurePolished();
    const int wanted = m_text->fontMetrics().horizontalAdvance(m_text->text()) + 2 * noticeEdge + 2;
    QRect place(QPoint(), QSize(qMin(wanted, area.width()), sizeHint().height()));
    place.moveCenter(area.center());
    place.moveBottom(area.bottom());
    setGeometry(place);
}
