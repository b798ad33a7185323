// SPDX-License-Identifier: MIT
// What the panels say of what they know.
#include "common/box_protocol.h"
#include "ui/configuration/parameter_panel.h"

#include <QLabel>
#include <QStyle>

#include <algorithm>

void ParameterPanel::setTrouble(const QString& text)
{
    if (text == m_trouble)
        return;
    m_trouble = text;
    showStates();
}

void ParameterPanel::showStates()
{
    showMarks();
    m_summary.setText(summaryText());
    m_summary.setProperty("state", m_trouble.isEmpty() ? QString() : QStringLiteral("error"));
    m_summary.style()->unpolish(&m_summary);
    m_summary.style()->polish(&m_summary);
    m_warning.setVisible(!m_trouble.isEmpty());
    tellHindrance();
}

void ParameterPanel::showMarks()
{
    QHash<QWidget*, FieldState> states;
    QHash<QWidget*, QString> notes;
    for (const ShownParameter& parameter : m_parameters) {
        const ParameterRow& row = parameter.row();
        QVector<QWidget*> widgets = row.binding.fields;
        for (QLabel* caption : row.captions)
            widgets << caption;
        for (QWidget* widget : qAsConst(widgets))
            states[widget] = qMax(states.value(widget), parameter.state());
        const bool isKnown = parameter.state() < FieldState::Missing;
        const QString unused = row.unused && isKnown ? row.unused() : QString();
        for (QWidget* widget : qAsConst(widgets)) {
            notes[widget] = unused;
            FieldMark::showIdle(widget, !m_trouble.isEmpty() || !unused.isEmpty());
        }
    }
    for (auto it = states.cbegin(); it != states.cend(); ++it)
        FieldMark::show(it.key(), it.value(), notes.value(it.key()));
}

bool ParameterPanel::isAnyKnown() const
{
    return std::any_of(m_parameters.cbegin(), m_parameters.cend(), [](const ShownParameter& one) {
        return one.row().isRead() && one.state() != FieldState::Unknown;
    });
}

void ParameterPanel::tellHindrance()
{
    if (isAnyKnown()) {
        emit hindered(QString(), true);
        return;
    }
    const bool isReading = std::any_of(m_parameters.cbegin(), m_parameters.cend(),
                                       [](const ShownParameter& one) { return one.isAwaited(); });
    if (!m_trouble.isEmpty())
        emit hindered(m_trouble, isReading);
    else
        emit hindered(isReading ? tr("正在读取…") : tr("尚未读到设备的参数"), true);
}

QString ParameterPanel::summaryText() const
{
    int awaited = 0;
    int unread = 0;
    int missing = 0;
    int changed = 0;
    for (const ShownParameter& parameter : m_parameters) {
        if (parameter.row().binding.fields.isEmpty())
            continue;
        awaited += parameter.isAwaited() ? 1 : 0;
        unread += parameter.isUnread() ? 1 : 0;
        missing += parameter.state() == FieldState::Missing ? 1 : 0;
        changed += parameter.state() == FieldState::Changed ? 1 : 0;
    }
    QStringList parts;
    if (awaited > 0)
        parts << tr("正在读取…");
    else if (unread > 0)
        parts << tr("%1 项未读到").arg(unread);
    if (missing > 0)
        parts << tr("%1 项设备没有").arg(missing);
    if (changed > 0)
        parts << tr("%1 项未保存").arg(changed);
    QStringList lines{m_trouble, parts.join(QStringLiteral(" · "))};
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

void ParameterPanel::retranslate()
{
    showStates();
    // The fields take up their own hints again only after this.
    QTimer::singleShot(0, this, [this] {
        for (ShownParameter& parameter : m_parameters)
            parameter.retranslate();
    });
}
