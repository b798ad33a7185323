// SPDX-License-Identifier: MIT
#include "ui/hub/access.h"

#include "widgets/input_ui.h"
#include "widgets/ip_address.h"
#include "widgets/key_text.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QRegularExpression>
#include <QShortcut>
#include <QSlider>

namespace
{

void name(QWidget& field, const QString& words)
{
    field.setAccessibleName(words);
    if (auto* address = qobject_cast<IPAddress*>(&field)) {
        address->nameFields();
        return;
    }
    if (QWidget* editor = field.focusProxy())
        editor->setAccessibleName(words);
    // "High" alone says nothing to who comes from elsewhere.
    const auto choices = field.findChildren<QAbstractButton*>();
    for (QAbstractButton* choice : choices)
        choice->setAccessibleName(QStringLiteral("%1, %2").arg(choice->text(), words));
}

} // namespace

QString Access::words(const QLabel& caption)
{
    static const QRegularExpression end(QStringLiteral("\\s*[:：]\\s*$"));
    return caption.text().remove(end);
}

void Access::nameByCaptions(QWidget& form)
{
    const auto captions = form.findChildren<QLabel*>();
    for (const QLabel* caption : captions) {
        QWidget* field = caption->buddy();
        if (!field)
            continue;
        name(*field, words(*caption));
        auto* slider = form.findChild<QSlider*>(field->objectName() + QStringLiteral("Slider"));
        if (slider)
            slider->setAccessibleName(words(*caption));
    }
}

void Access::showKeys(QWidget& form)
{
    const auto buttons = form.findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        const QVariant other = button->property("keys");
        const QKeySequence keys =
            other.isValid() ? QKeySequence(other.toString()) : button->shortcut();
        if (keys.isEmpty())
            continue;
        const QString action = button->text().isEmpty() ? button->accessibleName() : button->text();
        button->setToolTip(withKey(action, keys));
    }
}

void Access::addMenuKey(QWidget& window)
{
    auto* key = new QShortcut(QKeySequence(Qt::SHIFT + Qt::Key_F10), &window);
    QObject::connect(key, &QShortcut::activated, &window, [] {
        QWidget* focused = QApplication::focusWidget();
        if (!focused)
            return;
        const QPoint at = focused->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent wish(QContextMenuEvent::Keyboard, at, focused->mapToGlobal(at));
        QApplication::sendEvent(focused, &wish);
    });
}
