// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWebEngineDownloadItem>
#include <QWidget>

class ElidedLabel;
class QLabel;
class QPushButton;

/// One download: its name, how far it is and how it ended; can be cancelled, and put away after.
class DownloadLine : public QWidget
{
    Q_OBJECT

public:
    /// `item` stays with its owner and may go at any time.
    explicit DownloadLine(QWebEngineDownloadItem* item, QWidget* parent = nullptr);

    bool hasEnded() const { return m_state >= QWebEngineDownloadItem::DownloadCompleted; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void refresh();
    void cancelOrClose();
    QString stateText() const;

    QPointer<QWebEngineDownloadItem> m_item;
    QWebEngineDownloadItem::DownloadState m_state;
    QString m_failure;
    ElidedLabel* m_name;
    QLabel* m_text;
    QPushButton* m_button;
};
