// SPDX-License-Identifier: MIT
#include "ui/hub/availability.h"

#include <QVariant>
#include <QWidget>

namespace
{

const char* const reasonsProperty = "hindrances";
const char* const saidProperty = "hindranceSaid";
const char* const usualProperty = "usualToolTip";

QVariantMap reasonsOf(const QWidget& widget)
{
    return widget.property(reasonsProperty).toMap();
}

QString firstWord(const QVariantMap& reasons)
{
    for (const QVariant& reason : reasons) {
        if (!reason.toString().isEmpty())
            return reason.toString();
    }
    return QString();
}

void apply(QWidget& widget, const QVariantMap& reasons)
{
    // Whatever the tooltip says beside a reason of ours is what it says usually; that may have
    // been translated meanwhile.
    if (widget.toolTip() != widget.property(saidProperty).toString())
        widget.setProperty(usualProperty, widget.toolTip());
    const QString why = firstWord(reasons);
    widget.setProperty(reasonsProperty, reasons);
    widget.setProperty(saidProperty, why);
    widget.setToolTip(why.isEmpty() ? widget.property(usualProperty).toString() : why);
    widget.setAccessibleDescription(why);
    widget.setEnabled(reasons.isEmpty());
}

} // namespace

void Availability::hinder(QWidget& widget, const char* who, const QString& why)
{
    QVariantMap reasons = reasonsOf(widget);
    reasons.insert(QLatin1String(who), why);
    apply(widget, reasons);
}

void Availability::release(QWidget& widget, const char* who)
{
    QVariantMap reasons = reasonsOf(widget);
    reasons.remove(QLatin1String(who));
    apply(widget, reasons);
}

void Availability::set(QWidget& widget, const char* who, const QString& why)
{
    if (why.isEmpty())
        release(widget, who);
    else
        hinder(widget, who, why);
}
