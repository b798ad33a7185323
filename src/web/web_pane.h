// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class Browser;
class PageNotice;
class QStackedLayout;

/// The place of a box's own web page: a browser, made when the first page is asked for, so that who
/// never opens one never starts the engine. Where there can be no browser it shows the address and
/// opens it in the system's.
class WebPane : public QWidget
{
    Q_OBJECT

public:
    explicit WebPane(QWidget* parent = nullptr);

    /// The page to show; empty when there is none.
    void setUrl(const QString& url);
    QString url() const { return m_url; }

private:
    /// False where there can be none.
    bool mayBrowse();
    void showInBrowser();

    QString m_url;
    QStackedLayout* m_pages;
    PageNotice* m_notice;
    Browser* m_browser = nullptr;
    bool m_starting = false;
};
