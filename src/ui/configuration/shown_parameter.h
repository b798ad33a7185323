// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/field_state.h"
#include "ui/hub/parameter_row.h"

/// One parameter of the box that the panels are about: what is known of it, and what the operator
/// has made of it since.
class ShownParameter
{
public:
    explicit ShownParameter(ParameterRow row) : m_row(std::move(row)) {}

    const ParameterRow& row() const { return m_row; }
    FieldState state() const
    {
        return m_changed ? FieldState::Changed : m_stays ? FieldState::Read : m_state;
    }
    /// The box has been asked and may still answer.
    bool isAwaited() const { return m_awaited; }
    /// Awaited, or asked in vain; true even for what the operator has changed meanwhile.
    bool isUnread() const { return m_row.isRead() && m_state == FieldState::Unknown; }

    /// The panels are about another box now: shows none, and drops what was typed.
    void forget();
    /// The same box is being read again: its values stay where they are until it answers, but only
    /// an answer makes them known. `editable`: they can be changed meanwhile.
    void expect(bool editable);

    // The answer; what the operator has changed is not overwritten by it.
    /// `value` is text, a number, or the list of a parameter that is one.
    void tell(const QVariant& value);
    void refuse(); ///< the box has no such parameter
    void fail();   ///< nothing that could be understood

    /// The field may show something else than before. True when the state has changed.
    bool look();

    /// What saving sends: what the operator made of it, else what the box itself has told, as it
    /// stands. Nothing of what has not been read; what was changed before the box was read again
    /// only when that is known to be the same box.
    std::optional<QString> toSave(bool sameBox) const;
    /// The box has taken `value`. True when the operator had made that of it.
    bool noteSaved(const QString& value);
    /// Says again, in the language of now, why there is no value.
    void retranslate();

private:
    void hear();
    void blank(FieldState state);
    bool isHeld() const;

    ParameterRow m_row;
    FieldState m_state = FieldState::Unknown;
    bool m_awaited = false;
    bool m_changed = false;
    bool m_carried = false;          ///< and that before the box was read again
    bool m_stays = false;            ///< shows as read, though it is being read again
    bool m_showing = false;          ///< it is the program that writes to the field
    std::optional<QString> m_told;   ///< by the box, as saving would send it
    std::optional<QString> m_before; ///< what the field reads while nobody has changed it
};
