// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What kind of file a name stands for, judged by its suffix alone.
enum class FileType {
    Spreadsheet,
    Animation,
    Picture,
    Link,
    Audio,
    Video,
    Pdf,
    Slides,
    Text,
    Document,
    Archive,
    Unknown,
};

FileType fileType(const QString& name);

/// The resource path of the icon of `type`; a video that is `playing` has one of its own.
QString fileTypeIcon(FileType type, bool playing = false);
