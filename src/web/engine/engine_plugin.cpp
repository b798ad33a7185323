// SPDX-License-Identifier: MIT
#include "web/engine/engine_plugin.h"

#include "web/engine/engine_browser.h"

Browser* EnginePlugin::createBrowser(QWidget* parent)
{
    return new EngineBrowser(parent);
}
