// SPDX-License-Identifier: MIT
#include "simulator/box_state.h"

#include "simulator/parameters.h"

#include <QDateTime>

#include <algorithm>

namespace sim
{
namespace
{
constexpr int maxRequests = 20000;

/// A copy that shares nothing with the list, so that nobody looks into it outside of the lock.
template <typename T> QVector<T> ownCopy(QVector<T> list)
{
    list.detach();
    return list;
}

} // namespace

BoxState::BoxState(int number, const QString& address)
    : m_factory(factorySettings(number, address)), m_parameters(m_factory)
{
    const bool full = m_parameters.value(QStringLiteral("eParam_NDIEncMode")) == QLatin1String("1");
    m_activity.fullEncoder = full;
    m_activity.compressedEncoder = !full;
}

QString BoxState::parameter(const QString& name) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_parameters.value(name);
}

bool BoxState::hasParameter(const QString& name) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_parameters.contains(name);
}

void BoxState::setParameter(const QString& name, const QString& value)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_parameters.insert(name, value);
}

QMap<QString, QString> BoxState::parameters() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_parameters;
}

void BoxState::loseSettings()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    QMap<QString, QString> settings = m_factory;
    for (const char* name : {"eParam_FirmVersion", "eParam_MACAddress"})
        settings.insert(QString::fromLatin1(name), m_parameters.value(QString::fromLatin1(name)));
    m_parameters = settings;
}

void BoxState::resetSettings(const QStringList& names)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const QString& name : names)
        m_parameters.insert(name, m_factory.value(name));
}

QStringList BoxState::decodeSources() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_decodeSources;
}

void BoxState::setDecodeSources(const QStringList& sources)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_decodeSources = sources;
}

QVector<Recording> BoxState::recordings() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return ownCopy(m_recordings);
}

void BoxState::addRecording(const Recording& recording)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_recordings.prepend(recording);
}

Recording BoxState::takeRecording(const QString& name)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found =
        std::find_if(m_recordings.begin(), m_recordings.end(),
                     [&name](const Recording& recording) { return recording.name == name; });
    if (found == m_recordings.end())
        return {};
    const Recording taken = *found;
    m_recordings.erase(found);
    return taken;
}

BoxActivity BoxState::activity() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_activity;
}

void BoxState::noteInChange(const QString& what)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_activity.changingFirmware)
        m_activity.breaches << BoxBreach{what, QDateTime::currentMSecsSinceEpoch() -
                                                   m_activity.changeOrderedAt};
}

QString BoxState::uploadedVersion() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_uploadedVersion;
}

void BoxState::setUploadedVersion(const QString& version)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_uploadedVersion = version;
}

void BoxState::log(const BoxRequest& request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_requests.size() >= maxRequests) {
        m_requests.remove(0, maxRequests / 10); // in one go, not one by one
    }
    m_requests.append(request);
}

QVector<BoxRequest> BoxState::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return ownCopy(m_requests);
}

void BoxState::clearRequests()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
}

} // namespace sim
