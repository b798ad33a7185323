// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>
#include <initializer_list>
#include <optional>

class IPAddress;
class Inputui;
class QAbstractButton;
class QLineEdit;
class QSpinBox;

/// Ties one parameter to what shows it.
struct ParameterBinding {
    /// Shows a value; empty for a parameter that is never read.
    std::function<void(const QString&)> show;
    /// In place of `show`, for a parameter that is a list.
    std::function<void(const QVariant&)> showList;
    /// What saving sends, no value while nothing is chosen; empty for a parameter that the save
    /// button never sends.
    std::function<std::optional<QString>()> read;
};

/// One parameter of a box, by its name on the wire.
struct ParameterRow {
    QString name;
    ParameterBinding binding;
};

using ParameterTable = QVector<ParameterRow>;

/// The kinds of bindings. The widgets outlive them. What a value cannot mean leaves the widget as
/// it is, unless stated otherwise; text that is no number counts as 0 where a number is due.
namespace Bind
{

/// Free text, saved with its equals signs escaped.
ParameterBinding text(Inputui* input);
ParameterBinding text(QLineEdit* edit);
/// An IPv4 address; `shown` is told what the editor holds after each value.
ParameterBinding address(IPAddress* editor, std::function<void(const QString&)> shown);
/// "1" for a checked button, "0" otherwise; `shown` is told its state after each value.
ParameterBinding flag(QAbstractButton* button, std::function<void(bool)> shown);

struct Choice {
    QAbstractButton* button;
    const char* value;
};
/// One of several buttons; a value of none of them chooses `other`, where there is one.
ParameterBinding choice(std::initializer_list<Choice> choices, QAbstractButton* other = nullptr);
/// One of several buttons, by its number from 0.
ParameterBinding numberedChoice(std::initializer_list<QAbstractButton*> buttons);

ParameterBinding number(QSpinBox* box);
/// A number that the box counts in kilo and the panel in mega; what is too large shows as the most.
ParameterBinding kiloAsMega(QSpinBox* box);

/// Saved, and never shown.
ParameterBinding constant(const QString& value);
/// Shown by a function, and never saved.
ParameterBinding shownBy(std::function<void(const QString&)> show);
ParameterBinding listShownBy(std::function<void(const QVariant&)> show);
/// The same binding, never saved.
ParameterBinding notSaved(ParameterBinding binding);

} // namespace Bind
