// SPDX-License-Identifier: MIT
#pragma once

#include "device/recording_download.h"

#include <QScrollArea>

class QProgressBar;
class QToolButton;
class QVBoxLayout;

/// One download: its name, how far it is, and a button that ends it. It waits for its turn until it
/// has made progress.
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
    void showState();

    QProgressBar* m_bar;
    QToolButton* m_cancel;
    DownloadProgress m_progress;
    bool m_isWaiting = true;
};

/// The downloads that run or wait, below the storage list; takes no room while there are none, and
/// scrolls when there are many.
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
