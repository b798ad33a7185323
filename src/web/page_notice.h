// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

/// Stands where a box's page would be: says why there is none, shows the address, and offers to try
/// again or to use the system's browser.
class PageNotice : public QWidget
{
    Q_OBJECT

public:
    enum Kind {
        NotInstalled, ///< the page opens in the system's browser, because there is no engine
        RunsAsRoot,   ///< ... because the engine's sandbox refuses root
        NoIsolation,  ///< ... because the system offers no sandbox
        Incomplete,   ///< ... because the engine is not whole
        Loading,
        Failed,   ///< the box does not answer
        NoPage,   ///< it answers, with nothing to show
        Crashed,  ///< the page ended its process and is loaded again
        Closed,   ///< the operator closed a page that did not answer
        TooLarge, ///< it was closed for the memory that it took
    };

    explicit PageNotice(QWidget* parent = nullptr);

    void setKind(Kind kind);
    Kind kind() const { return m_kind; }
    /// Shown plain and opened by the button; empty when there is none.
    void setAddress(const QString& url);

signals:
    void retry();

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void openExternally();
    QString message() const;
    QString reason() const;

    Kind m_kind = Loading;
    QString m_url;
    QLabel* m_message;
    QLabel* m_reason;
    QLabel* m_address;
    QPushButton* m_retry;
    QPushButton* m_open;
};
