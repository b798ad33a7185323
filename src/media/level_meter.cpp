// SPDX-License-Identifier: MIT
#include "media/level_meter.h"

#include "media/sound_level.h"

#include <QPainter>

namespace
{

constexpr int barHeight = 7;
constexpr int barGap = 3;
constexpr int barWidth = 150;
constexpr int markWidth = 2;
constexpr qint64 holdMs = 1000;

struct Zone {
    float from;
    float to;
    QRgb colour;
};

constexpr Zone zones[] = {
    {SoundLevel::Floor, -18, 0xff3fbf6f}, {-18, -6, 0xffe6c04a}, {-6, 0, 0xffee5d5d}};
/// Of what a bar does not fill.
constexpr float dimmed = 0.22F;

} // namespace

LevelMeter::LevelMeter(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    m_clock.start();
}

QVector<float> LevelMeter::marks() const
{
    QVector<float> levels;
    for (const Mark& mark : m_marks)
        levels << mark.level;
    return levels;
}

void LevelMeter::setLevels(const QVector<float>& levels)
{
    const qint64 now = m_clock.elapsed();
    if (levels.size() != m_levels.size()) {
        m_marks.fill({SoundLevel::Floor, now}, levels.size());
        m_levels = levels;
        updateGeometry();
    }
    m_levels = levels;
    for (int n = 0; n < levels.size(); ++n) {
        if (levels.at(n) >= m_marks.at(n).level || now - m_marks.at(n).since > holdMs)
            m_marks[n] = {levels.at(n), now};
    }
    update();
}

QSize LevelMeter::sizeHint() const
{
    const int bars = m_levels.size();
    return {barWidth, qMax(0, bars * (barHeight + barGap) - barGap)};
}

void LevelMeter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const auto across = [this](float level) {
        return int((level - SoundLevel::Floor) / -SoundLevel::Floor * float(width()));
    };
    for (int n = 0; n < m_levels.size(); ++n) {
        const int top = n * (barHeight + barGap);
        const int filled = across(m_levels.at(n));
        const int mark = across(m_marks.at(n).level);
        for (const Zone& zone : zones) {
            const QRect place(QPoint(across(zone.from), top),
                              QSize(across(zone.to) - across(zone.from), barHeight));
            QColor colour = QColor::fromRgb(zone.colour);
            painter.fillRect(place & QRect(0, top, filled, barHeight), colour);
            if (mark > 0)
                painter.fillRect(place & QRect(mark - markWidth, top, markWidth, barHeight),
                                 colour);
            colour.setAlphaF(double(dimmed));
            painter.fillRect(place & QRect(filled, top, width(), barHeight), colour);
        }
    }
}
