// SPDX-License-Identifier: MIT
#include "ui/hub/field_state.h"

#include <QEvent>
#include <QLineEdit>
#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace
{

const char* const stateProperty = "fieldState";
const char* const idleProperty = "idle";

/// The names of the style sheet.
QString nameOf(FieldState state)
{
    switch (state) {
    case FieldState::Read:
        break;
    case FieldState::Changed:
        return QStringLiteral("changed");
    case FieldState::Missing:
        return QStringLiteral("missing");
    case FieldState::Unknown:
        return QStringLiteral("unknown");
    }
    return QStringLiteral("read");
}

void restyle(QWidget* widget)
{
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

void FieldMark::show(QWidget* field, FieldState state, const QString& note)
{
    QString text = note;
    if (state == FieldState::Changed)
        text = tr("已修改，尚未保存");
    else if (state == FieldState::Missing)
        text = tr("设备没有此参数");
    else if (state == FieldState::Unknown)
        text = tr("尚未从设备读到，不能修改，也不会保存");
    field->setToolTip(text);
    field->setAccessibleDescription(text);
    // Of an editor made of several, these have the keys.
    const auto inner = field->findChildren<QLineEdit*>();
    for (QLineEdit* edit : inner)
        edit->setAccessibleDescription(text);
    if (field->property(stateProperty) == nameOf(state))
        return;
    field->setProperty(stateProperty, nameOf(state));
    field->setEnabled(state == FieldState::Read || state == FieldState::Changed);
    restyle(field);
    // A label takes the room for its border only on being told.
    QEvent restyled(QEvent::StyleChange);
    QCoreApplication::sendEvent(field, &restyled);
}

void FieldMark::showIdle(QWidget* field, bool isIdle)
{
    if (field->property(idleProperty).toBool() == isIdle)
        return;
    field->setProperty(idleProperty, isIdle);
    restyle(field);
    // An editor made of several is styled as a whole.
    const auto inner = field->findChildren<QWidget*>();
    for (QWidget* part : inner)
        restyle(part);
}

QString FieldMark::word(FieldState state)
{
    return state == FieldState::Missing ? tr("设备没有此参数") : tr("未知");
}

FieldState FieldMark::of(const QWidget* field)
{
    const QString name = field->property(stateProperty).toString();
    for (const FieldState state : {FieldState::Changed, FieldState::Missing, FieldState::Unknown}) {
        if (name == nameOf(state))
            return state;
    }
    return FieldState::Read;
}
