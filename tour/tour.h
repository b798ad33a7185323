// SPDX-License-Identifier: MIT
#pragma once

#include "ui/window/tarn_hub.h"

#include <QStringList>

#include <functional>
#include <vector>

class Item;
class Tour;
class TreeView;

/// The box that most stops are about.
inline const QString selectedBox = "127.77.0.11";

/// One stop: shows one thing that the program does, and looks whether it is there.
struct Stop {
    const char* name;
    std::function<bool(Tour&)> visit;
};

/// Drives the window as an operator does, with mouse and keys, waits for what an operator waits for
/// and keeps pictures of the screen.
class Tour
{
public:
    /// `lanCommands` is the pipe that kora-lan reads; `pictures` the folder for NN-name.png.
    Tour(Tarn_Hub& window, QString lanCommands, QString pictures);

    /// Visits all stops, prints a line about each; true when every one was reached.
    bool visitAll(const std::vector<Stop>& stops);

    /// Serves events until `condition` holds; false, with `what` as the reason, when it never did.
    bool waitFor(const QString& what, const std::function<bool()>& condition, int seconds = 10);
    /// Always false: "return tour.fail(...)".
    bool fail(const QString& why);
    /// Takes the stop's picture now instead of at its end.
    void takePicture();

    Tarn_Hub& window() { return m_window; }
    template <class T> T* child(const char* name) const
    {
        T* found = m_window.findChild<T*>(name);
        if (!found)
            qFatal("the window has no %s", name);
        return found;
    }
    bool isShown(const char* name) const { return child<QWidget>(name)->isVisible(); }
    TreeView* devices() const;
    Item* box(const QString& ip) const;

    void moveMouse(QWidget* widget, const QPoint& pos);
    void click(QWidget* widget);
    /// Clicks the row of a box on its title.
    void clickBox(const QString& ip);
    /// Runs `open`, which brings up a dialog or a menu; once `isReady` holds for that, `act` acts
    /// on it. Whatever is still open afterwards is closed. False when it was never ready, with
    /// `what` as the reason. `isReady` must not wait: the program may be waiting for the same below
    /// it.
    bool inPopup(const std::function<void()>& open, const QString& what,
                 const std::function<bool(QWidget&)>& isReady,
                 const std::function<void(QWidget&)>& act);
    /// Waits for a dialog that says `text`, takes the picture and presses `key` there.
    bool answerDialog(const std::function<void()>& open, const QString& text, Qt::Key key);
    /// Gives kora-lan a command.
    bool tellLan(const QString& command);

    /// Every text on the screen, tooltips and the rows of both lists included.
    QStringList shownTexts() const;

private:
    bool visit(const Stop& stop);
    /// Takes a picture of a dialog that nobody has asked for, and tells what it says.
    QString noteDialog(const QWidget& dialog);

    Tarn_Hub& m_window;
    const QString m_lanCommands;
    const QString m_pictures;
    QString m_pictureName;
    bool m_pictureTaken = false;
    QString m_why;
};
