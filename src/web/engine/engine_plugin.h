// SPDX-License-Identifier: MIT
#pragma once

#include "web/browser.h"

#include <QObject>

/// What the program finds when it loads this library.
class EnginePlugin : public QObject, public BrowserFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TARN_BROWSER_FACTORY)
    Q_INTERFACES(BrowserFactory)

public:
    Browser* createBrowser(QWidget* parent) override;
};
