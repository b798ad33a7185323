// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

/// Stands for a box's own web page: shows its address and opens it in the system's browser.
class WebPane : public QWidget
{
    Q_OBJECT

public:
    explicit WebPane(QWidget* parent = nullptr);

    /// The page to offer; empty when there is none.
    void setUrl(const QString& url);
    QString url() const { return m_url; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();

    QString m_url;
    QLabel* m_notice;
    QLabel* m_address;
    QPushButton* m_open;
};
