// SPDX-License-Identifier: MIT
#include "simulator/plugged_file.h"

#include <QFile>

#include <algorithm>
#include <filesystem>

namespace sim
{

PluggedFile::PluggedFile(QString path) : m_path(std::move(path))
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    write();
}

void PluggedFile::set(const QString& address, bool reachable)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (reachable) {
        m_addresses.insert(address);
    } else {
        m_addresses.remove(address);
    }
    write();
}

void PluggedFile::hold()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isHeld = true;
}

void PluggedFile::release()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isHeld = false;
    write();
}

void PluggedFile::write()
{
    if (m_path.isEmpty() || m_isHeld)
        return;
    QStringList lines = m_addresses.values();
    std::sort(lines.begin(), lines.end());
    const QString unfinished = m_path + QStringLiteral(".new");
    QFile file(unfinished);
    QByteArray text = lines.join(QLatin1Char('\n')).toUtf8();
    if (!text.isEmpty())
        text += '\n';
    // Not QSaveFile: it waits for the disk each time, and nothing here outlives the run.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(text) != text.size()) {
        qWarning("cannot write %s", qPrintable(unfinished));
        return;
    }
    file.close();
    std::error_code failed;
    std::filesystem::rename(unfinished.toStdU16String(), m_path.toStdU16String(), failed);
    if (failed)
        qWarning("cannot replace %s", qPrintable(m_path));
}

} // namespace sim
