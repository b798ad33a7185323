// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>
#include <QtPlugin>

/// A browser inside the program: the page, what is said while there is none, its downloads. Known
/// to the program and to the library that makes it, each with a copy of its own: so nothing here
/// needs to be the same object in both.
class Browser : public QWidget
{
public:
    using QWidget::QWidget;

    /// Loads a page; an empty address empties the view.
    virtual void setUrl(const QString& url) = 0;
};

/// What the library of the browser engine offers.
class BrowserFactory
{
public:
    virtual ~BrowserFactory() = default;

    /// Starts the engine, which takes some tenths of a second the first time, and makes a browser
    /// that `parent` owns.
    virtual Browser* createBrowser(QWidget* parent) = 0;
};

/// Changes with every change of the classes above: a library of another version is not loaded.
#define TARN_BROWSER_FACTORY "tarn-hub.BrowserFactory/1"
Q_DECLARE_INTERFACE(BrowserFactory, TARN_BROWSER_FACTORY)
