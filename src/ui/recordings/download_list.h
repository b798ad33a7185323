// SPDX-License-Identifier: MIT
#pragma once

#include "device/recording_download.h"
#include "ui/recordings/transfer_rate.h"

#include <QScrollArea>

class QProgressBar;
class QToolButton;
class QVBoxLayout;

/// One download: its name, how far it is, a button that ends it, and one that goes on with one that
/// has broken off. At first it waits for its turn.
class DownloadRow : public QWidget
{
    Q_OBJECT

public:
    /// `name` comes from a box.
    explicit DownloadRow(const QString& name, QWidget* parent = nullptr);

    void setProgress(const DownloadProgress& progress);
    /// It will go on in its turn.
    void showWaiting();
    /// It has broken off, and what has come is kept.
    void showKept();

signals:
    void cancelled();
    void resumed();

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class State { Waiting, Running, Kept };

    QToolButton* addButton(const char* name, const QString& icon);
    void retranslate();
    void setState(State state);
    void showState();
    QString size(qint64 bytes) const;
    QString runningText() const;

    QProgressBar* m_bar;
    QToolButton* m_resume;
    QToolButton* m_cancel;
    DownloadProgress m_progress;
    TransferRate m_rate;
    State m_state = State::Waiting;
};

/// The downloads that run, wait or have broken off, below the storage list; takes no room while
/// there are none, and scrolls when there are many.
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
