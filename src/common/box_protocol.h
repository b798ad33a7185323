// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1String>
#include <QString>
#include <QStringList>

/// The wire protocol of a KORA box: every parameter name, URL and command line, written once.
namespace BoxProtocol
{

// Names of parameters that can be read or written under /config.
constexpr QLatin1String DeviceName("eParam_DeviceName");
constexpr QLatin1String FirmVersion("eParam_FirmVersion");
constexpr QLatin1String HardVersion("eParam_HardVersion");
constexpr QLatin1String SdkVersion("eParam_SdkVersion");
constexpr QLatin1String DiskSpace("eParam_DiskSpace");
constexpr QLatin1String MACAddress("eParam_MACAddress");

/// True for four decimal numbers of 0 to 255 joined by dots, and nothing else. Only such text may
/// become a box's address.
bool isIpv4Address(const QString& text);

/// Puts `values` in place of %1 to %9 in one pass: a value that itself holds "%2" stays as it is.
QString fill(const QString& text, const QStringList& values);

/// As fill(), for a command line: each value stays inside the one argument it stands in, whatever
/// quotes and blanks it holds.
QString fillCommand(const QString& commandLine, const QStringList& values);

QString readUrl(const QString& ip, const QString& parameter);
QString dashboardUrl(const QString& ip);

QString rebootCommand(const QString& ip);
QString otaCommand(const QString& ip);
/// `file` is a path on this computer.
QString uploadCommand(const QString& file, const QString& ip);

} // namespace BoxProtocol
