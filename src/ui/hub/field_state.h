// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QString>

class QWidget;

/// What the panels know of what a field shows. Where a field shows several parameters, the later
/// one here counts.
enum class FieldState {
    Read,    ///< told by the box that is selected
    Changed, ///< by the operator, and not saved yet
    Missing, ///< the box says that it has no such parameter
    Unknown, ///< not read yet, or the box did not answer
};

/// How fields show their state: only what has been read can be changed, the style sheet marks the
/// rest by a property, and tooltip and accessible description say it in words.
class FieldMark
{
    Q_DECLARE_TR_FUNCTIONS(FieldMark)

public:
    /// `note`, too, is said in words.
    static void show(QWidget* field, FieldState state, const QString& note = QString());
    /// Whether what `field` shows counts for nothing now: its box is away, or does not use it.
    static void showIdle(QWidget* field, bool isIdle);
    /// Why there is no value, short enough for an empty field.
    static QString word(FieldState state);
    /// The state that `field` shows; Read for one that has never shown any.
    static FieldState of(const QWidget* field);
};
