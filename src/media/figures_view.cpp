// SPDX-License-Identifier: MIT
#include "media/figures_view.h"

#include "media/level_meter.h"
#include "widgets/elided_label.h"

#include <QEvent>
#include <QGridLayout>
#include <QPainter>
#include <QVariant>

namespace
{

constexpr int edge = 12;
constexpr int rowGap = 3;
constexpr int columnGap = 14;
/// Wide enough for everything but a codec with a long name.
constexpr int valueWidth = 200;
constexpr int meterGap = 6;
/// How long words stand, so that they can be read.
constexpr qint64 wordsMs = 500;

/// A line in which every digit has the same width, so that nothing moves when one changes. The
/// font's own are for reading: a 1 is narrow.
class FigureLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QFontMetrics metrics = fontMetrics();
        const int baseline = (height() + metrics.ascent() - metrics.descent()) / 2;
        const int digit = metrics.horizontalAdvance(QLatin1Char('0'));
        const QString words = text();
        int x = 0;
        for (int at = 0; at < words.size();) {
            int end = at + 1;
            while (!words.at(at).isDigit() && end < words.size() && !words.at(end).isDigit())
                ++end;
            const QString piece = words.mid(at, end - at);
            const int width = metrics.horizontalAdvance(piece);
            const int room = words.at(at).isDigit() ? qMax(digit, width) : width;
            painter.drawText(x + (room - width) / 2, baseline, piece);
            x += room;
            at = end;
        }
    }
};

/// What is not known is not zero.
QString orDash(bool isKnown, const QString& text)
{
    return isKnown ? text : QStringLiteral("—");
}

QString bitRate(qint64 bitsPerSecond)
{
    constexpr double kilo = 1000;
    const double kilobits = double(bitsPerSecond) / kilo;
    return kilobits < kilo ? QStringLiteral("%1 kbit/s").arg(kilobits, 0, 'f', 0)
                           : QStringLiteral("%1 Mbit/s").arg(kilobits / kilo, 0, 'f', 1);
}

} // namespace

FiguresView::FiguresView(QWidget* area, QWidget* other)
    : QWidget(area), m_other(other), m_meter(new LevelMeter(this))
{
    setObjectName(QStringLiteral("video_figures"));
    setAttribute(Qt::WA_StyledBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(edge, edge, edge, edge);
    grid->setHorizontalSpacing(columnGap);
    grid->setVerticalSpacing(rowGap);
    const int rows = values().size();
    for (int n = 0; n < rows; ++n) {
        // Only the codec's name may be of any length.
        m_rows << Row{new QLabel(this),
                      n == 0 ? static_cast<QLabel*>(new ElidedLabel(this)) : new FigureLabel(this)};
        m_rows.last().value->setTextFormat(Qt::PlainText);
        m_rows.last().name->setTextFormat(Qt::PlainText);
        m_rows.last().name->setProperty("dim", true);
        m_rows.last().value->setFixedWidth(valueWidth);
        grid->addWidget(m_rows.last().name, n, 0);
        grid->addWidget(m_rows.last().value, n, 1);
    }
    grid->setRowMinimumHeight(rows, meterGap);
    grid->addWidget(m_meter, rows + 1, 0, 1, 2);
    grid->setRowStretch(rows + 2, 1);
    hide();
    retranslate();
    area->installEventFilter(this);
    other->installEventFilter(this);
}

void FiguresView::setFigures(const PictureFigures& figures)
{
    const bool isOther = figures.codec != m_figures.codec || figures.size != m_figures.size ||
                         figures.soundLevels.size() != m_figures.soundLevels.size();
    m_figures = figures;
    m_meter->setLevels(figures.soundLevels);
    if (isOther || !m_sinceWords.isValid() || m_sinceWords.elapsed() >= wordsMs)
        showWords();
}

void FiguresView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void FiguresView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    place();
}

bool FiguresView::eventFilter(QObject* watched, QEvent* event)
{
    const auto type = event->type();
    if (type == QEvent::Resize ||
        (watched == m_other &&
         (type == QEvent::Move || type == QEvent::Show || type == QEvent::Hide)))
        place();
    return QWidget::eventFilter(watched, event);
}

/// In the order of the names that retranslate() gives.
QStringList FiguresView::values() const
{
    const PictureFigures& now = m_figures;
    const bool isOpen = !now.codec.isEmpty();
    const bool isShown = !now.size.isEmpty();
    return {orDash(isOpen, now.codec),
            orDash(isShown, QStringLiteral("%1 × %2").arg(now.size.width()).arg(now.size.height())),
            orDash(isShown, QStringLiteral("%1 fps").arg(now.picturesPerSecond, 0, 'f', 1)),
            orDash(isOpen, bitRate(now.bitsPerSecond)),
            orDash(now.lagMs >= 0, QStringLiteral("%1 ms").arg(now.lagMs)),
            QString::number(now.dropped),
            orDash(isOpen, decoder()),
            QString::number(now.reconnections),
            now.soundLevels.isEmpty() ? orDash(isOpen, tr("无声音"))
                                      : tr("%1 个声道").arg(now.soundLevels.size())};
}

QString FiguresView::decoder() const
{
    return tr("软件，%1 个线程").arg(m_figures.threads);
}

void FiguresView::retranslate()
{
    const QStringList names{tr("编码"),     tr("画面尺寸"), tr("帧率"),
                            tr("码率"),     tr("延迟"),     tr("丢弃的画面"),
                            tr("解码方式"), tr("重新连接"), tr("声音")};
    for (int n = 0; n < m_rows.size(); ++n)
        m_rows.at(n).name->setText(names.value(n));
    showWords();
}

void FiguresView::showWords()
{
    const QStringList texts = values();
    for (int n = 0; n < m_rows.size(); ++n) {
        if (m_rows.at(n).value->text() != texts.at(n))
            m_rows.at(n).value->setText(texts.at(n));
    }
    m_sinceWords.start();
    m_meter->setVisible(!m_figures.soundLevels.isEmpty());
    place();
}

void FiguresView::place()
{
    const QRect area = parentWidget()->rect().adjusted(edge, edge, -edge, -edge);
    ensurePolished();
    layout()->activate();
    QRect place(area.topLeft(), sizeHint().boundedTo(area.size()));
    const QRect other = m_other->geometry();
    // Where there is no room below, what the other says comes first and lies above.
    const bool hasRoom = other.bottom() + edge + place.height() <= area.bottom();
    if (m_other->isVisibleTo(parentWidget()) && place.intersects(other) && hasRoom)
        place.moveTop(other.bottom() + edge);
    setGeometry(place);
}
