// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

/// The settings that are kept of boxes across their upgrades, by MAC address, and which boxes wait
/// to get theirs back. Where they are kept is the business of whoever implements it.
class KeptSettings
{
public:
    KeptSettings() = default;
    virtual ~KeptSettings() = default;
    KeptSettings(const KeptSettings&) = delete;
    KeptSettings& operator=(const KeptSettings&) = delete;

    /// Parameter to text; empty for a box of which nothing was kept.
    virtual QVariantMap values(const QString& mac) const = 0;
    virtual void setValues(const QString& mac, const QVariantMap& values) = 0;

    bool isAnyWaiting() const { return !waiting().isEmpty(); }
    bool isWaiting(const QString& mac) const;
    void addWaiting(const QString& mac);
    void removeWaiting(const QString& mac);

    /// The box waits once more, for its last try.
    void addLastTry(const QString& mac);
    /// True when this was the box's last try; it has none any more.
    bool takeLastTry(const QString& mac);

    /// True for what can be the value of a setting: a text or a number.
    static bool isValue(const QVariant& value);
    /// The parameters that are read to be kept, and are not among `values`.
    static QStringList missingFrom(const QVariantMap& values);

protected:
    /// MAC addresses, and for a last try the address followed by a mark.
    virtual QStringList waiting() const = 0;
    virtual void setWaiting(const QStringList& list) = 0;

private:
    bool remove(const QString& entry);
};
