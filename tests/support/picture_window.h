// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_widget.h"

#include <QLineEdit>
#include <QTest>

/// A window with a picture, and a field below it that has the keyboard.
struct PictureWindow {
    explicit PictureWindow(const QSize& picture)
    {
        widget->setGeometry(QRect(QPoint(), picture));
        field->setGeometry(0, picture.height() + 10, 100, 30);
        window.resize(qMax(picture.width(), 300), picture.height() + 60);
        window.show();
        window.activateWindow();
        isActive = QTest::qWaitForWindowActive(&window);
        field->setFocus();
    }

    QWidget window;
    FFmpegWidget* const widget = new FFmpegWidget(&window);
    QLineEdit* const field = new QLineEdit(&window);
    bool isActive = false;
};
