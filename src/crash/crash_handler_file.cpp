// SPDX-License-Identifier: MIT
#ifdef __linux__

#include "crash/crash_handler_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace
{

/// "-yyyyMMdd-hhmmss"; the C library's own way takes a lock.
template <class Text> void addTime(Text& text, std::time_t time)
{
    const auto seconds = static_cast<unsigned long long>(time < 0 ? 0 : time);
    const unsigned long long ofDay = seconds % 86400;
    // Counted in eras of 400 years that begin on the first of March, which puts the leap day last.
    const unsigned long long days = seconds / 86400 + 719468;
    const unsigned long long ofEra = days % 146097;
    const unsigned long long year = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
    const unsigned long long ofYear = ofEra - (365 * year + year / 4 - year / 100);
    const unsigned long long fromMarch = (5 * ofYear + 2) / 153;
    const unsigned long long month = fromMarch < 10 ? fromMarch + 3 : fromMarch - 9;
    text.add("-").add(days / 146097 * 400 + year + (month <= 2 ? 1 : 0), 4);
    text.add(month, 2).add(ofYear - (153 * fromMarch + 2) / 5 + 1, 2);
    text.add("-").add(ofDay / 3600, 2).add(ofDay / 60 % 60, 2).add(ofDay % 60, 2);
}

} // namespace

bool CrashFile::open(const char* folder, const char* stem, std::time_t localTime)
{
    constexpr unsigned mostAlike = 99; // crashes in one second
    FixedText<4096> base;
    base.add(folder).add(stem);
    addTime(base, localTime);
    for (unsigned n = 1; n <= mostAlike; ++n) {
        m_name = base;
        if (n > 1)
            m_name.add("-").add(n);
        m_name.add(".dmp");
        m_partName = m_name;
        m_partName.add(".part");
        if (m_partName.isFull())
            return false;
        if (tryName(folder))
            return true;
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool CrashFile::tryName(const char* folder)
{
    constexpr int mode = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
    constexpr mode_t forUserOnly = 0600; // memory may hold what is nobody else's business
    m_file = ::open(m_partName.text(), mode, forUserOnly);
    if (m_file < 0 && errno == ENOENT && mkdir(folder, 0700) == 0)
        m_file = ::open(m_partName.text(), mode, forUserOnly);
    if (m_file < 0)
        return false;
    // Whoever has the unfinished file has the name.
    if (access(m_name.text(), F_OK) != 0)
        return true;
    discard();
    errno = EEXIST;
    return false;
}

bool CrashFile::clear()
{
    return ftruncate(m_file, 0) == 0 && lseek(m_file, 0, SEEK_SET) == 0;
}

bool CrashFile::keep()
{
    close(m_file);
    m_file = -1;
    return std::rename(m_partName.text(), m_name.text()) == 0;
}

void CrashFile::discard()
{
    close(m_file);
    m_file = -1;
    unlink(m_partName.text());
}

bool CrashFile::append(const void* data, std::size_t size)
{
    const char* at = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = write(m_file, at, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        at += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool CrashFile::replace(std::size_t place, const void* data, std::size_t size)
{
    return pwrite(m_file, data, size, static_cast<off_t>(place)) == static_cast<ssize_t>(size);
}

#endif
