// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "ui/recordings/file_type.h"

#include <QFile>

Q_DECLARE_METATYPE(FileType)

class tst_FileType : public QObject
{
    Q_OBJECT

private slots:
    void suffixDecides_data();
    void suffixDecides();
    void playingVideoHasItsOwnIcon();
};

void tst_FileType::suffixDecides_data()
{
    columns<QString, FileType, QString>("name", "type", "icon");
    row("spreadsheet", "a.XLSX", FileType::Spreadsheet, "excel");
    row("animation", "a.gif", FileType::Animation, "gif");
    row("picture", "a.jpg", FileType::Picture, "img");
    row("link", "a.lnk", FileType::Link, "link");
    row("audio", "a.flac", FileType::Audio, "MP3");
    row("video", "a b.MOV", FileType::Video, "MP4");
    row("the last suffix", "a.zip.mp4", FileType::Video, "MP4");
    row("PDF", "a.pdf", FileType::Pdf, "pdf");
    row("slides", "a.pot", FileType::Slides, "ppt");
    row("text", "a.txt", FileType::Text, "txt");
    row("document", "a.dot", FileType::Document, "word");
    row("archive", "a.tar.gz", FileType::Archive, "zip");
    row("no suffix", "mp4", FileType::Unknown, "unknown");
    row("ends in a dot", "a.", FileType::Unknown, "unknown");
    row("nothing", "", FileType::Unknown, "unknown");
    row("part of a suffix", "a.mp", FileType::Unknown, "unknown");
    row("two suffixes of the list", "a.mp4 3gp", FileType::Unknown, "unknown");
}

void tst_FileType::suffixDecides()
{
    const auto [name, type, icon] = cells<QString, FileType, QString>();
    QCOMPARE(int(fileType(name)), int(type));
    QCOMPARE(fileTypeIcon(type), ":/spark/img/suffix/" + icon + ".svg");
    QVERIFY(QFile::exists(fileTypeIcon(type)));
}

void tst_FileType::playingVideoHasItsOwnIcon()
{
    QVERIFY(fileTypeIcon(FileType::Video, true) != fileTypeIcon(FileType::Video));
    QVERIFY(QFile::exists(fileTypeIcon(FileType::Video, true)));
    QCOMPARE(fileTypeIcon(FileType::Audio, true), fileTypeIcon(FileType::Audio));
}

QTEST_GUILESS_MAIN(tst_FileType)
#include "tst_file_type.moc"
