// SPDX-License-Identifier: MIT
#include "media/picture_state.h"

#include "widgets/elided_label.h"

#include <QEvent>
#include <QStyle>
#include <QUrl>
#include <QVBoxLayout>
#include <QVariant>

namespace
{

constexpr int margin = 12;

/// A password in an address is nobody's business who looks at the screen.
QString withoutPassword(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    return url.isValid() && !url.password().isEmpty() ? url.toDisplayString(QUrl::RemovePassword)
                                                      : address;
}

} // namespace

PictureState::PictureState(QWidget* area)
    : QWidget(area)
    , m_title(new QLabel(this))
    , m_detail(new ElidedLabel(this))
    , m_hint(new QLabel(this))
{
    setObjectName(QStringLiteral("video_state"));
    setAttribute(Qt::WA_StyledBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_title->setObjectName(QStringLiteral("video_state_title"));
    m_title->setTextFormat(Qt::PlainText);
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setWordWrap(true);
    m_detail->setObjectName(QStringLiteral("video_state_detail"));
    m_detail->setProperty("dim", true);
    m_detail->setAlignment(Qt::AlignCenter);
    m_hint->setObjectName(QStringLiteral("video_state_hint"));
    m_hint->setProperty("dim", true);
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(m_title);
    layout->addWidget(m_detail);
    layout->addWidget(m_hint);
    area->installEventFilter(this);
    retranslate();
}

void PictureState::show(State state, const QString& url, const QTime& since, int tries)
{
    m_state = state;
    m_url = withoutPassword(url);
    m_since = since;
    m_tries = tries;
    const bool isBad = state == State::Silent || state == State::Failed;
    m_title->setProperty("state", isBad ? QStringLiteral("error") : QString());
    m_title->style()->unpolish(m_title);
    m_title->style()->polish(m_title);
    retranslate();
    setVisible(state != State::Playing);
}

void PictureState::setOverPicture(bool over)
{
    if (m_overPicture == over)
        return;
    m_overPicture = over;
    place();
}

void PictureState::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

bool PictureState::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}

QString PictureState::title() const
{
    switch (m_state) {
    case State::Idle:
        return tr("没有播放内容");
    case State::Opening:
        return tr("正在打开…");
    case State::Silent:
        return tr("无信号，自 %1 起没有新画面").arg(m_since.toString(QStringLiteral("HH:mm:ss")));
    case State::Ended:
        return tr("播放结束");
    case State::Failed:
        return tr("无法播放");
    case State::Stopped:
        return tr("已停止播放");
    case State::Playing:
        break;
    }
    return {};
}

QString PictureState::detail() const
{
    if (m_tries == 0)
        return m_url;
    // An address may hold anything that looks like a place for text.
    return tr("第 %1 次重新连接").arg(m_tries) + QStringLiteral(" · ") + m_url;
}

void PictureState::retranslate()
{
    m_title->setText(title());
    m_detail->setText(detail());
    m_hint->setText(m_state == State::Idle ? tr("右键单击可播放本地文件或网络地址")
                                           : tr("右键单击可停止重试"));
    m_detail->setVisible(m_state != State::Idle);
    m_hint->setVisible(m_state == State::Idle || m_tries > 0);
    place();
}

void PictureState::place()
{
    const QRect area = parentWidget()->rect().adjusted(margin, margin, -margin, -margin);
    ensurePolished();
    // The detail may be as long as an address; the title is always there whole. The hint takes the
    // lines that it needs.
    const QLabel* second = m_state == State::Idle ? m_hint : m_detail;
    const int detail = second->fontMetrics().horizontalAdvance(second->text()) + 2 * margin + 2;
    const int title = m_title->fontMetrics().horizontalAdvance(m_title->text()) + 2 * margin + 2;
    const int width = qMin(qMax(title, detail), area.width());
    const int height =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    QRect place(QPoint(), QSize(width, height));
    place.moveCenter(area.center());
    if (m_overPicture)
        place.moveTop(area.top());
    setGeometry(place);
}
