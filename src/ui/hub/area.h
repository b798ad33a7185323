// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/access.h"

#include <QEvent>
#include <QWidget>

/// One area of the window: a form of its own that labels itself again when the language changes.
template <class Form> class Area : public QWidget
{
public:
    explicit Area(QWidget* parent = nullptr) : QWidget(parent)
    {
        setAttribute(Qt::WA_StyledBackground);
        ui.setupUi(this);
        tell();
    }

    void retranslate()
    {
        ui.retranslateUi(this);
        tell();
    }

    Form ui;

protected:
    void changeEvent(QEvent* event) override
    {
        if (event->type() == QEvent::LanguageChange)
            retranslate();
        QWidget::changeEvent(event);
    }

private:
    void tell()
    {
        Access::nameByCaptions(*this);
        Access::showKeys(*this);
    }
};
