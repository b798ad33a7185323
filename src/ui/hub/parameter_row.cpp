// SPDX-License-Identifier: MIT
#include "ui/hub/parameter_row.h"

#include "common/box_protocol.h"
#include "widgets/input_ui.h"
#include "widgets/ip_address.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QSpinBox>

namespace
{

template <class Edit> ParameterBinding freeText(Edit* edit)
{
    ParameterBinding binding;
    binding.show = [edit](const QString& value) { edit->setText(value); };
    binding.read = [edit] { return BoxProtocol::escapeEquals(edit->text()); };
    return binding;
}

} // namespace

namespace Bind
{

ParameterBinding text(Inputui* input)
{
    return freeText(input);
}

ParameterBinding text(QLineEdit* edit)
{
    return freeText(edit);
}

ParameterBinding address(IPAddress* editor, std::function<void(const QString&)> shown)
{
    ParameterBinding binding;
    binding.show = [editor, shown = std::move(shown)](const QString& value) {
        editor->setIP(value);
        shown(editor->getIP());
    };
    binding.read = [editor] { return editor->getIP(); };
    return binding;
}

ParameterBinding flag(QAbstractButton* button, std::function<void(bool)> shown)
{
    ParameterBinding binding;
    binding.show = [button, shown = std::move(shown)](const QString& value) {
        if (value == QLatin1String("0") || value == QLatin1String("1"))
            button->setChecked(value == QLatin1String("1"));
        shown(button->isChecked());
    };
    binding.read = [button] { return QString::number(button->isChecked() ? 1 : 0); };
    return binding;
}

ParameterBinding choice(std::initializer_list<Choice> choices, QAbstractButton* other)
{
    const QVector<Choice> all(choices);
    ParameterBinding binding;
    binding.show = [all, other](const QString& value) {
        QAbstractButton* chosen = other;
        for (const Choice& choice : all) {
            if (value == QLatin1String(choice.value))
                chosen = choice.button;
        }
        if (chosen)
            chosen->setChecked(true);
    };
    binding.read = [all]() -> std::optional<QString> {
        for (const Choice& choice : all) {
            if (choice.button->isChecked())
                return QString(QLatin1String(choice.value));
        }
        return std::nullopt;
    };
    return binding;
}

ParameterBinding numberedChoice(std::initializer_list<QAbstractButton*> buttons)
{
    const QVector<QAbstractButton*> all(buttons);
    ParameterBinding binding;
    binding.show = [all](const QString& value) {
        if (QAbstractButton* chosen = all.value(value.toInt()))
            chosen->setChecked(true);
    };
    binding.read = [all]() -> std::optional<QString> {
        for (int number = 0; number < all.size(); ++number) {
            if (all.at(number)->isChecked())
                return QString::number(number);
        }
        return std::nullopt;
    };
    return binding;
}

ParameterBinding number(QSpinBox* box)
{
    ParameterBinding binding;
    binding.show = [box](const QString& value) { box->setValue(value.toInt()); };
    binding.read = [box] { return QString::number(box->value()); };
    return binding;
}

ParameterBinding kiloAsMega(QSpinBox* box)
{
    ParameterBinding binding;
    binding.show = [box](const QString& value) {
        const double mega = double(value.toLongLong()) / 1000.0;
        box->setValue(int(qBound(0.0, mega, double(box->maximum()))));
    };
    binding.read = [box] { return QString::number(box->value() * 1000); };
    return binding;
}

ParameterBinding constant(const QString& value)
{
    return {{}, {}, [value] { return value; }};
}

ParameterBinding shownBy(std::function<void(const QString&)> show)
{
    return {std::move(show), {}, {}};
}

ParameterBinding listShownBy(std::function<void(const QVariant&)> show)
{
    return {{}, std::move(show), {}};
}

ParameterBinding notSaved(ParameterBinding binding)
{
    binding.read = {};
    return binding;
}

} // namespace Bind
