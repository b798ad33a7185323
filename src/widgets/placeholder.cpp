// SPDX-License-Identifier: MIT
#include "widgets/placeholder.h"

#include <QEvent>
#include <QWidget>

namespace
{

class PlaceholderDimmer : public QObject
{
public:
    explicit PlaceholderDimmer(QWidget& field) : QObject(&field)
    {
        field.installEventFilter(this);
        dim(field);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange)
            dim(*static_cast<QWidget*>(watched));
        return QObject::eventFilter(watched, event);
    }

private:
    static void dim(QWidget& field)
    {
        QPalette palette = field.palette();
        QColor dimmed = palette.color(QPalette::Text);
        // The text of a disabled one is dim enough.
        if (field.isEnabled())
            dimmed.setAlphaF(dimmed.alphaF() * 0.6);
        if (palette.color(QPalette::PlaceholderText) == dimmed)
            return;
        palette.setColor(QPalette::PlaceholderText, dimmed);
        field.setPalette(palette);
    }
};

} // namespace

void keepPlaceholderDim(QWidget& field)
{
    new PlaceholderDimmer(field); // the field owns it
}
