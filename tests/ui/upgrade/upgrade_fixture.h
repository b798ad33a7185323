// SPDX-License-Identifier: MIT
#pragma once

#include "tests/ui/window/window_fixture.h"

#include <QAbstractButton>
#include <QCryptographicHash>
#include <QDialog>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QTableWidget>
#include <QUrl>

/// Clicks one button in each modal dialog that comes up, and remembers what the dialogs said.
class ButtonAnswerer : public QObject
{
public:
    explicit ButtonAnswerer(const QString& button) : m_button(button)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { answer(); });
        m_timer.start(20);
    }

    void setButton(const QString& button) { m_button = button; }
    const QStringList& texts() const { return m_texts; }
    void clear() { m_texts.clear(); }

private:
    void answer()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || dialog->objectName() != "messageBox" || dialog == m_answered)
            return;
        m_answered = dialog;
        auto* text = dialog->findChild<QWidget*>("m_tipContent");
        m_texts << (text ? text->property("plainText").toString() : QString());
        auto* button = dialog->findChild<QAbstractButton*>(m_button);
        if (!button || button->isHidden())
            button = dialog->findChild<QAbstractButton*>("okpushButton");
        button->click();
    }

    QTimer m_timer;
    QString m_button;
    QPointer<QWidget> m_answered;
    QStringList m_texts;
};

/// A firmware package of random bytes in `folder`. Returns its path.
inline QString makePackage(const QString& folder, const QString& name, int bytes)
{
    QFile file(folder + "/" + name);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(file.fileName()));
    QByteArray content(bytes, Qt::Uninitialized);
    quint32 seed = 1;
    for (char& c : content) {
        seed = seed * 1664525u + 1013904223u;
        c = char(seed >> 24);
    }
    file.write(content);
    return file.fileName();
}

inline QString md5Of(const QString& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        qFatal("cannot read %s", qPrintable(path));
    return QString::fromLatin1(hash.result().toHex());
}

inline void dropOn(QWidget* area, const QStringList& paths)
{
    QMimeData files;
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls << QUrl::fromLocalFile(path);
    files.setUrls(urls);
    // The application delivers a drop to the widget that the drag has entered.
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(area, &enter);
    QDropEvent drop(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(area, &drop);
}

/// The report's rows by the first address of the box: header to text.
inline QMap<QString, QMap<QString, QString>> reportRows(const WindowFixture& fixture)
{
    auto* table = fixture.child<QTableWidget>("upgradeReportTable");
    QMap<QString, QMap<QString, QString>> rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        QMap<QString, QString> cells;
        for (int column = 0; column < table->columnCount(); ++column)
            cells[table->horizontalHeaderItem(column)->text()] = table->item(row, column)->text();
        rows[cells["设备"].section(' ', 0, 0)] = cells;
    }
    return rows;
}

/// The content of the newest CSV report, without the byte order mark; empty when there is none.
inline QByteArray newestCsv(const WindowFixture& fixture)
{
    const QFileInfoList files =
        QDir(fixture.dataFolder() + "upgrade").entryInfoList({"*.csv"}, QDir::Files, QDir::Name);
    if (files.isEmpty())
        return {};
    QFile file(files.last().filePath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    return content.startsWith("\xEF\xBB\xBF") ? content.mid(3) : QByteArray("no byte order mark");
}
