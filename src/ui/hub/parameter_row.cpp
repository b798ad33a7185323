// SPDX-License-Identifier: MIT
#include "ui/hub/parameter_row.h"

#include "common/box_protocol.h"
#include "widgets/input_ui.h"
#include "widgets/ip_address.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>

namespace
{

using Buttons = QVector<QAbstractButton*>;

/// Of a long name the beginning says which it is; whoever types keeps the cursor.
void showStart(QWidget& edit)
{
    QList<QLineEdit*> lines = edit.findChildren<QLineEdit*>();
    if (auto* itself = qobject_cast<QLineEdit*>(&edit))
        lines << itself;
    for (QLineEdit* line : qAsConst(lines)) {
        if (!line->hasFocus())
            line->setCursorPosition(0);
    }
}

template <class Edit> ParameterBinding freeText(Edit* edit, std::function<QString()> hint)
{
    ParameterBinding binding;
    binding.meaning = [](const QString& value) { return BoxProtocol::escapeEquals(value); };
    binding.show = [edit, hint](const QString& value) {
        edit->setPlaceholderText(hint());
        // The cursor of whoever looks at the same text stays where it is.
        if (edit->text() != value)
            edit->setText(value);
        showStart(*edit);
    };
    binding.blank = [edit](const QString& word) {
        edit->setPlaceholderText(word);
        edit->setText(QString());
    };
    binding.read = [edit] { return BoxProtocol::escapeEquals(edit->text()); };
    binding.watch = [edit](QObject* context, const std::function<void()>& changed) {
        QObject::connect(edit, &Edit::textChanged, context, [changed] { changed(); });
    };
    binding.fields = {edit};
    return binding;
}

/// Buttons of a group cannot all be off while each keeps the others from it.
void uncheckAll(const Buttons& buttons)
{
    for (QAbstractButton* button : buttons)
        button->setAutoExclusive(false);
    for (QAbstractButton* button : buttons)
        button->setChecked(false);
    for (QAbstractButton* button : buttons)
        button->setAutoExclusive(true);
}

void watchButtons(const Buttons& buttons, QObject* context, const std::function<void()>& changed)
{
    for (const QAbstractButton* button : buttons)
        QObject::connect(button, &QAbstractButton::toggled, context, [changed] { changed(); });
}

/// One of `values`, each with the button of its place; `otherwise` is the place for all others, -1
/// when there is none.
ParameterBinding oneOf(const Buttons& buttons, const QStringList& values, int otherwise)
{
    const auto placeOf = [values, otherwise](const QString& value) {
        const int place = values.indexOf(value);
        return place < 0 ? otherwise : place;
    };
    ParameterBinding binding;
    binding.meaning = [values, placeOf](const QString& value) -> std::optional<QString> {
        const int place = placeOf(value);
        return place < 0 ? std::nullopt : std::make_optional(values.at(place));
    };
    binding.show = [buttons, placeOf](const QString& value) {
        buttons.at(placeOf(value))->setChecked(true);
    };
    binding.blank = [buttons](const QString&) { uncheckAll(buttons); };
    binding.read = [buttons, values]() -> std::optional<QString> {
        for (int place = 0; place < buttons.size(); ++place) {
            if (buttons.at(place)->isChecked())
                return values.at(place);
        }
        return std::nullopt;
    };
    binding.watch = [buttons](QObject* context, const std::function<void()>& changed) {
        watchButtons(buttons, context, changed);
    };
    for (QAbstractButton* button : buttons)
        binding.fields << button;
    return binding;
}

/// A number that the panel shows divided by `unit`.
ParameterBinding scaled(QSpinBox* box, QSlider* slider, int unit)
{
    const auto shown = [box, unit](const QString& value) -> std::optional<int> {
        bool isNumber = false;
        const qint64 number = value.toLongLong(&isNumber);
        if (!isNumber)
            return std::nullopt;
        return int(qBound(qint64(box->minimum()), number / unit, qint64(box->maximum())));
    };
    ParameterBinding binding;
    binding.meaning = [shown, unit](const QString& value) -> std::optional<QString> {
        const std::optional<int> number = shown(value);
        return number ? std::make_optional(QString::number(qint64(*number) * unit)) : std::nullopt;
    };
    binding.show = [box, shown](const QString& value) {
        box->setSpecialValueText(QString());
        box->setValue(*shown(value));
    };
    binding.blank = [box](const QString&) {
        // Wide enough for no word: that it is no number says enough.
        box->setSpecialValueText(QStringLiteral("–"));
        box->setValue(box->minimum());
    };
    binding.read = [box, unit] { return QString::number(qint64(box->value()) * unit); };
    binding.watch = [box](QObject* context, const std::function<void()>& changed) {
        QObject::connect(box, QOverload<int>::of(&QSpinBox::valueChanged), context,
                         [changed] { changed(); });
    };
    binding.fields = {box, slider};
    return binding;
}

/// As the editor shows it: boxes may fill up the numbers of an address.
QString withoutLeadingZeros(const QString& address)
{
    QStringList numbers = address.split(QLatin1Char('.'));
    for (QString& number : numbers) {
        while (number.size() > 1 && number.size() <= 3 && number.startsWith(QLatin1Char('0')))
            number.remove(0, 1);
    }
    return numbers.join(QLatin1Char('.'));
}

} // namespace

namespace Bind
{

ParameterBinding text(Inputui* input)
{
    // The form's own hint, which it takes up again with each language.
    return freeText(input, [] { return Inputui::tr("请输入"); });
}

ParameterBinding text(QLineEdit* edit)
{
    return freeText(edit, [] { return QString(); });
}

ParameterBinding address(IPAddress* editor, std::function<void(const QString&)> shown)
{
    const QList<QLineEdit*> parts = editor->findChildren<QLineEdit*>();
    ParameterBinding binding;
    binding.meaning = [](const QString& value) {
        const QString plain = withoutLeadingZeros(value);
        return BoxProtocol::isIpv4Address(plain) ? std::make_optional(plain) : std::nullopt;
    };
    binding.show = [editor, shown](const QString& value) {
        editor->setIP(withoutLeadingZeros(value));
        shown(editor->getIP());
    };
    binding.blank = [parts, shown](const QString&) {
        // Not by the editor's own clear(), which moves the focus there.
        for (QLineEdit* part : parts)
            part->clear();
        shown(QString());
    };
    binding.read = [editor] { return editor->getIP(); };
    binding.watch = [parts](QObject* context, const std::function<void()>& changed) {
        for (const QLineEdit* part : parts)
            QObject::connect(part, &QLineEdit::textChanged, context, [changed] { changed(); });
    };
    binding.fields = {editor};
    return binding;
}

ParameterBinding flag(QAbstractButton* button, std::function<void(bool)> shown)
{
    ParameterBinding binding;
    binding.meaning = [](const QString& value) {
        const bool isFlag = value == QLatin1String("0") || value == QLatin1String("1");
        return isFlag ? std::make_optional(value) : std::nullopt;
    };
    binding.show = [button, shown](const QString& value) {
        button->setChecked(value == QLatin1String("1"));
        shown(button->isChecked());
    };
    binding.blank = [button, shown](const QString&) {
        button->setChecked(false);
        shown(false);
    };
    binding.read = [button] { return QString::number(button->isChecked() ? 1 : 0); };
    binding.watch = [button](QObject* context, const std::function<void()>& changed) {
        watchButtons({button}, context, changed);
    };
    binding.fields = {button};
    return binding;
}

ParameterBinding choice(std::initializer_list<Choice> choices, QAbstractButton* other)
{
    Buttons buttons;
    QStringList values;
    for (const Choice& choice : choices) {
        buttons << choice.button;
        values << QLatin1String(choice.value);
    }
    return oneOf(buttons, values, buttons.indexOf(other));
}

ParameterBinding numberedChoice(std::initializer_list<QAbstractButton*> buttons)
{
    QStringList values;
    for (size_t number = 0; number < buttons.size(); ++number)
        values << QString::number(number);
    return oneOf(buttons, values, -1);
}

ParameterBinding number(QSpinBox* box, QSlider* slider)
{
    return scaled(box, slider, 1);
}

ParameterBinding kiloAsMega(QSpinBox* box, QSlider* slider)
{
    return scaled(box, slider, 1000);
}

ParameterBinding constant(const QString& value)
{
    ParameterBinding binding;
    binding.read = [value] { return value; };
    return binding;
}

ParameterBinding shownBy(std::function<void(const QString&)> show, QVector<QWidget*> fields)
{
    ParameterBinding binding;
    binding.meaning = [](const QString& value) {
        return value.isEmpty() ? std::nullopt : std::make_optional(value);
    };
    binding.show = show;
    binding.blank = [show](const QString&) { show(QString()); };
    binding.fields = std::move(fields);
    return binding;
}

ParameterBinding listShownBy(std::function<void(const QVariant&)> show)
{
    ParameterBinding binding;
    binding.showList = show;
    binding.blank = [show](const QString&) { show(QVariant()); };
    return binding;
}

ParameterBinding notSaved(ParameterBinding binding)
{
    binding.read = {};
    return binding;
}

} // namespace Bind
