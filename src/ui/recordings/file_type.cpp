// SPDX-License-Identifier: MIT
#include "ui/recordings/file_type.h"

#include <QFileInfo>
#include <QStringList>

namespace
{

struct Group {
    FileType type;
    const char* icon;
    const char* suffixes; ///< lower case, each with a blank on both sides
};

// The first group that knows a suffix decides.
const Group groups[] = {
    {FileType::Spreadsheet, "excel", " xls xlt xla csv xlsx xlsm xlsb xltx xltm xlam "},
    {FileType::Animation, "gif", " gif "},
    {FileType::Picture, "img",
     " ico bmp jpg png tif pcx tga exif fpx svg psd cdr pcd dxf ufo eps ai raw wmf webp avif "
     "apng "},
    {FileType::Link, "link", " lnk "},
    {FileType::Audio, "MP3", " mp3 wma wav ape flac ogg aac "},
    {FileType::Video, "MP4", " avi mov rmvb rm flv mp4 3gp "},
    {FileType::Pdf, "pdf", " pdf "},
    {FileType::Slides, "ppt", " pptx potx potm ppsx ppsm pps ppam ppa pot pptm ppt "},
    {FileType::Text, "txt", " txt "},
    {FileType::Document, "word", " docx doc dotx dotm dot docm "},
    {FileType::Archive, "zip", " zip rar 7z tar gz bz2 "},
};

} // namespace

FileType fileType(const QString& name)
{
    const QString suffix = QFileInfo(name).suffix().toLower();
    if (suffix.isEmpty() || suffix.contains(QLatin1Char(' ')))
        return FileType::Unknown;
    const QString wanted = QLatin1Char(' ') + suffix + QLatin1Char(' ');
    for (const Group& group : groups) {
        if (QLatin1String(group.suffixes).contains(wanted))
            return group.type;
    }
    return FileType::Unknown;
}

QString fileTypeIcon(FileType type, bool playing)
{
    QString icon = QStringLiteral("unknown");
    for (const Group& group : groups) {
        if (group.type == type)
            icon = QLatin1String(group.icon);
    }
    if (type == FileType::Video && playing)
        icon += QLatin1String("_pause");
    return QStringLiteral(":/spark/img/suffix/") + icon + QStringLiteral(".svg");
}
