// SPDX-License-Identifier: MIT
#include "ui/configuration/shown_parameter.h"

#include "common/box_protocol.h"

#include <QScopedValueRollback>
#include <QSlider>

void ShownParameter::blank(FieldState state)
{
    const QScopedValueRollback<bool> showing(m_showing, true);
    m_state = state;
    m_changed = false;
    m_told.reset();
    m_before.reset();
    if (m_row.binding.blank)
        m_row.binding.blank(FieldMark::word(state));
}

void ShownParameter::forget()
{
    hear();
    blank(FieldState::Unknown);
    m_awaited = true;
}

void ShownParameter::expect(bool editable)
{
    m_carried = m_changed;
    m_stays = editable && (m_stays || m_state == FieldState::Read);
    m_state = FieldState::Unknown;
    m_awaited = true;
}

void ShownParameter::hear()
{
    m_awaited = false;
    m_stays = false;
}

/// A box may say so in the middle of its start: what the operator typed outlives that.
void ShownParameter::refuse()
{
    hear();
    if (!m_changed)
        blank(FieldState::Missing);
}

void ShownParameter::fail()
{
    hear();
    if (!m_changed)
        blank(FieldState::Unknown);
}

/// The operator drags the slider right now: it must not be moved from under the hand.
bool ShownParameter::isHeld() const
{
    for (const QWidget* field : m_row.binding.fields) {
        const auto* slider = qobject_cast<const QSlider*>(field);
        if (slider && slider->isSliderDown())
            return true;
    }
    return false;
}

void ShownParameter::tell(const QVariant& value)
{
    const ParameterBinding& binding = m_row.binding;
    hear();
    if (binding.showList) {
        binding.showList(value);
        m_state = FieldState::Read;
        return;
    }
    const QString text = value.toString();
    const std::optional<QString> meaning = binding.meaning(text);
    if (!meaning && !m_changed) {
        blank(FieldState::Unknown);
        // Of several buttons none is chosen: that is the truth, and can be changed.
        if (binding.read && !binding.read())
            m_state = FieldState::Read;
        return;
    }
    m_state = FieldState::Read;
    m_before = meaning;
    m_told.reset();
    if (meaning)
        m_told = BoxProtocol::escapeEquals(BoxProtocol::escapeSeparators(text));
    if (!m_changed && !isHeld()) {
        const QScopedValueRollback<bool> showing(m_showing, true);
        binding.show(text);
        if (binding.read)
            m_before = binding.read();
    }
    look();
}

bool ShownParameter::look()
{
    if (m_showing || !m_row.binding.read || !m_row.isRead())
        return false;
    const bool was = m_changed;
    // What shows as unknown cannot be changed by the operator.
    m_changed = state() < FieldState::Missing && m_row.binding.read() != m_before;
    if (m_changed != was)
        m_carried = m_state != FieldState::Read;
    return m_changed != was;
}

std::optional<QString> ShownParameter::toSave(bool sameBox) const
{
    const ParameterBinding& binding = m_row.binding;
    if (!binding.read)
        return std::nullopt;
    if (!m_row.isRead())
        return binding.read();
    if (m_changed)
        return sameBox || !m_carried ? binding.read() : std::nullopt;
    return m_state == FieldState::Read ? m_told : std::nullopt;
}

bool ShownParameter::noteSaved(const QString& value)
{
    if (!m_changed || m_row.binding.read() != value)
        return false;
    m_changed = false;
    m_state = FieldState::Read;
    m_before = m_told = value;
    return true;
}

void ShownParameter::retranslate()
{
    if (m_row.binding.blank && !m_awaited && !m_changed && m_state != FieldState::Read)
        blank(m_state);
}
