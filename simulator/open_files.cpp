// SPDX-License-Identifier: MIT
#include "simulator/open_files.h"

#include <algorithm>
#include <limits>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace sim
{

int allowOpenFiles()
{
#ifdef _WIN32
    return std::numeric_limits<int>::max(); // no limit of its own
#else
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 0;
    limit.rlim_cur = limit.rlim_max;
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
        getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, std::numeric_limits<int>::max()));
#endif
}

} // namespace sim
