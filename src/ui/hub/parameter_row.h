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
class QLabel;
class QLineEdit;
class QObject;
class QSlider;
class QSpinBox;
class QWidget;

/// Ties one parameter to what shows it.
struct ParameterBinding {
    /// What `read` gives while this value of a box shows; no value for one that means nothing here
    /// and so cannot be shown. Empty for a parameter that is never read as text.
    std::function<std::optional<QString>(const QString&)> meaning;
    /// Shows a value that has a meaning.
    std::function<void(const QString&)> show;
    /// In place of both, for a parameter that is a list.
    std::function<void(const QVariant&)> showList;
    /// Shows that there is no value; `word` says why, where there is room for it.
    std::function<void(const QString& word)> blank;
    /// What saving sends, no value while nothing is chosen; empty for a parameter that the save
    /// button never sends.
    std::function<std::optional<QString>()> read;
    /// Calls `changed`, while `context` lives, whenever `read` may give something else.
    std::function<void(QObject* context, const std::function<void()>& changed)> watch;
    /// What the operator changes it with.
    QVector<QWidget*> fields;
};

/// One parameter of a box, by its name on the wire.
struct ParameterRow {
    QString name;
    ParameterBinding binding;
    QVector<QLabel*> captions = {};
    /// Why the box makes no use of the value just now; empty when it does. May be missing.
    std::function<QString()> unused = {};

    /// Its value is read from the box.
    bool isRead() const { return binding.show || binding.showList; }
};

using ParameterTable = QVector<ParameterRow>;

/// The kinds of bindings. The widgets outlive them.
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

/// A number, moved with a slider as well; what is too large shows as the most.
ParameterBinding number(QSpinBox* box, QSlider* slider);
/// The same for one that the box counts in kilo and the panel in mega.
ParameterBinding kiloAsMega(QSpinBox* box, QSlider* slider);

/// Saved, and never shown.
ParameterBinding constant(const QString& value);
/// Shown by a function, which is told an empty text where there is no value, and never saved.
ParameterBinding shownBy(std::function<void(const QString&)> show, QVector<QWidget*> fields);
ParameterBinding listShownBy(std::function<void(const QVariant&)> show);
/// The same binding, never saved.
ParameterBinding notSaved(ParameterBinding binding);

} // namespace Bind
