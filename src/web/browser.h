// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

/// What hinders a browser inside the program.
enum class BrowserObstacle {
    None,
    NotBuilt,      ///< this build has none
    RunsAsRoot,    ///< the engine's sandbox refuses root
    NoIsolation,   ///< the system offers no sandbox to this process
    EngineMissing, ///< the engine's own program is not where it belongs
};

/// A browser inside the program: the page, what is said while there is none, its downloads.
class Browser : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Loads a page; an empty address empties the view.
    virtual void setUrl(const QString& url) = 0;
};

/// Asks without starting anything. The engine ends the process when it meets one of these.
BrowserObstacle browserObstacle();

/// Starts the engine, which takes some tenths of a second the first time, and makes a browser that
/// `parent` owns. Null in a build without the engine. Only when there is no obstacle.
Browser* createBrowser(QWidget* parent);

/// What the process needs before the application object is made.
void prepareBrowserEngine();
