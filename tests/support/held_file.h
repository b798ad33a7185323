// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#ifdef Q_OS_UNIX
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

#define NEED_HELD_FILES() static_cast<void>(0)

/// A file that holds everybody up who opens it, as on a share that is gone, while this exists.
class HeldFile
{
public:
    explicit HeldFile(const QString& path)
        : m_file(::open(path.toLocal8Bit().constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
    {
        std::signal(SIGIO, SIG_IGN); // somebody wants the lease back
        m_isHeld = ::fcntl(m_file, F_SETLEASE, F_WRLCK) == 0;
    }
    ~HeldFile() { ::close(m_file); }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    bool isHeld() const { return m_isHeld; }

private:
    const int m_file;
    bool m_isHeld = false;
};
#else
#define NEED_HELD_FILES() QSKIP("no file of this system holds up who opens it")

struct HeldFile {
    explicit HeldFile(const QString&) {}
    static bool isHeld() { return false; }
};
#endif
