// SPDX-License-Identifier: MIT
#include "common/platform.h"

#include <QtGlobal>

#ifdef Q_OS_WIN

namespace Platform
{

void useUtf8ForChildProcesses()
{
    // Windows hands command lines over as UTF-16; there is nothing to choose.
}

} // namespace Platform

#endif
