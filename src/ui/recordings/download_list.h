// SPDX-License-Identifier: MIT
#pragma once

#include "device/recording_download.h"

#include <QScrollArea>

class QProgressBar;
class QToolButton;
class QVBoxLayout;

/// One running download: its name, how far it is, and a button that ends it.
class DownloadRow : public QWidget
{
    Q_OBJECT

public:
    /// `name` comes from a box.
    explicit DownloadRow(const QString& name, QWidget* parent = nullptr);

    void setProgress(const DownloadProgress& progress);

signals:
    void cancelled();

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    QProgressBar* m_bar;
    QToolButton* m_cancel;
};

/// The downloads that run, below the storage list; takes no room while there are none, and scrolls
/// when there are many.
class DownloadList : public QScrollArea
{
    Q_OBJECT

public:
    explicit DownloadList(QWidget* parent = nullptr);

    /// The list owns the row.
    DownloadRow* addRow(const QString& name);
    void removeRow(DownloadRow* row);

private:
    void fitRows();

    QVBoxLayout* m_rows;
    int m_count = 0;
};
