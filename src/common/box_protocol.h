// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1String>
#include <QString>
#include <QStringList>

/// The wire protocol of a KORA box: every parameter name, URL and command line, written once.
namespace BoxProtocol
{

/// `text` as a constant: measuring a text is none to every compiler, the size of an array is.
template <int size> constexpr QLatin1String constant(const char (&text)[size])
{
    return QLatin1String(text, size - 1);
}

// Names of parameters that can be read or written under /config.
constexpr QLatin1String DeviceName = constant("eParam_DeviceName");
constexpr QLatin1String FirmVersion = constant("eParam_FirmVersion");
constexpr QLatin1String HardVersion = constant("eParam_HardVersion");
constexpr QLatin1String SdkVersion = constant("eParam_SdkVersion");
constexpr QLatin1String DiskSpace = constant("eParam_DiskSpace");
constexpr QLatin1String MACAddress = constant("eParam_MACAddress");
constexpr QLatin1String NDIHXFormat = constant("eParam_NDIHXFormat");
constexpr QLatin1String NDIEncMode = constant("eParam_NDIEncMode");
constexpr QLatin1String HDMIMode = constant("eParam_HDMIMode");
constexpr QLatin1String NDIHXQuality = constant("eParam_NDIHXQuality");
constexpr QLatin1String HXEncProfile = constant("eParam_HXEncProfile");
constexpr QLatin1String HXControlRate = constant("eParam_HXControlRate");
constexpr QLatin1String NDIHXBitRate = constant("eParam_NDIHXBitRate");
constexpr QLatin1String NDIHXGopLength = constant("eParam_NDIHXGopLength");
constexpr QLatin1String NDIHDR = constant("eParam_NDIHDR");
constexpr QLatin1String NDIName = constant("eParam_NDIName");
constexpr QLatin1String DHCP = constant("eParam_DHCP");
constexpr QLatin1String IPAddress = constant("eParam_IPAddress");
constexpr QLatin1String NetMask = constant("eParam_NetMask");
constexpr QLatin1String NTPServer = constant("eParam_NTPServer");
constexpr QLatin1String SDIVolume = constant("eParam_SDIVolume");
constexpr QLatin1String LineinVolume = constant("eParam_LineinVolume");
constexpr QLatin1String LineinDelay = constant("eParam_LineinDelay");
constexpr QLatin1String NDIDecodeList = constant("eParam_NDIDecodeList");
constexpr QLatin1String RecordList = constant("eParam_RecordList");

// Commands under /control; the reply names the one it answers.
constexpr QLatin1String RecordOn = constant("record_on");
constexpr QLatin1String RecordOff = constant("record_off");
constexpr QLatin1String StreamOn = constant("stream_on");
constexpr QLatin1String StreamOff = constant("stream_off");
constexpr QLatin1String Reboot = constant("reboot");
constexpr QLatin1String FullEncoderOn = constant("ndienc_on");
constexpr QLatin1String FullEncoderOff = constant("ndienc_off");
constexpr QLatin1String HxEncoderOn = constant("hxenc_on");
constexpr QLatin1String HxEncoderOff = constant("hxenc_off");
constexpr QLatin1String DecodeOn = constant("hxdec_on");
constexpr QLatin1String DecodeOff = constant("hxdec_off");

/// The settings of a box, in the order in which they are read: what the panels show, and what is
/// kept across an upgrade.
QStringList configurationParameters();

/// True for four decimal numbers of 0 to 255 joined by dots, and nothing else: no zero in front,
/// with which a number is octal to some programs. Only such text may become a box's address.
bool isIpv4Address(const QString& text);

/// True for six pairs of hexadecimal digits, joined by ":", "-" or nothing. Only such text may
/// become a box's MAC address: boxes are looked up, and properties named, by it.
bool isMacAddress(const QString& text);

/// True when both name the same box; nothing names none.
bool isSameMac(const QString& a, const QString& b);

/// Puts `values` in place of %1 to %9 in one pass: a value that itself holds "%2" stays as it is.
QString fill(const QString& text, const QStringList& values);

/// As fill(), for a command line: each value stays inside the one argument it stands in, whatever
/// quotes and blanks it holds.
QString fillCommand(const QString& commandLine, const QStringList& values);

QString readUrl(const QString& ip, const QString& parameter);
QString dashboardUrl(const QString& ip);
/// Where the recording `name` is played from; the name is percent-encoded.
QString mediaUrl(const QString& ip, const QString& name);

/// The one escaping of free text: every "=" becomes "%3D".
QString escapeEquals(const QString& text);
/// So that nothing in `text`, which somebody else has written, ends the value and begins another.
QString escapeSeparators(QString text);

/// Writes one parameter; success is the reply's "status" reading "set success".
QString setCommand(const QString& parameter, const QString& value, const QString& ip);
/// Runs an action without arguments, e.g. "hxenc_on".
QString controlCommand(const QString& action, const QString& ip);
QString decodeOnCommand(const QString& ip, const QString& source);
/// Pushes the live stream to `url`.
QString streamPushCommand(const QString& ip, const QString& url);
/// Serves the live stream as an SRT listener.
QString streamListenCommand(const QString& ip, const QString& port, const QString& streamId);

/// The name of the command that `commandLine` sends, as its reply repeats it; empty when none.
QString actionOf(const QString& commandLine);
QString rebootCommand(const QString& ip);
QString restartCommand(const QString& ip);
QString otaCommand(const QString& ip);
/// `file` is a path on this computer.
QString uploadCommand(const QString& file, const QString& ip);

QString recordOnCommand(const QString& ip, const QString& fileName);
/// Deletes the recording `fileName`; the name cannot begin another field of the request.
QString recordDeleteCommand(const QString& fileName, const QString& ip);
/// Downloads the recording `fileName` to `path` on this computer, or what follows its first
/// `offset` bytes to the end of that file; curl reports its progress on its error output.
QString downloadCommand(const QString& path, const QString& ip, const QString& fileName,
                        qint64 offset = 0);

} // namespace BoxProtocol
