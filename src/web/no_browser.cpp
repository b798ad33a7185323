// SPDX-License-Identifier: MIT
#include "web/browser.h"

BrowserObstacle browserObstacle()
{
    return BrowserObstacle::NotBuilt;
}

Browser* createBrowser(QWidget* parent)
{
    Q_UNUSED(parent)
    return nullptr;
}

void prepareBrowserEngine() {}
