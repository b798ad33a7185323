// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QPushButton;

/// What is to be said about a page, or asked, while it can be used on: a line above it. One thing
/// at a time, in the order in which they came.
class PageBar : public QWidget
{
    Q_OBJECT

public:
    enum Kind {
        HostWanted,   ///< the page wants another host
        LoginsEnded,  ///< too many logins were asked for
        DialogsEnded, ///< too many dialogs, or files to save
        Unresponsive, ///< the page does not answer
    };

    explicit PageBar(QWidget* parent = nullptr);

    /// `host` is for HostWanted. What is said already is not said twice.
    void tell(Kind kind, const QString& host = {});
    /// This one is over.
    void take(Kind kind);
    /// A new page has none of it.
    void clear();

signals:
    /// The operator follows: allows the host, loads the page again, closes it.
    void agreed(Kind kind, const QString& host);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Matter {
        Kind kind;
        QString host;
        bool operator==(const Matter& other) const
        {
            return kind == other.kind && host == other.host;
        }
    };

    void finish(bool agree);
    void refresh();

    QList<Matter> m_matters;
    QLabel* m_text;
    QPushButton* m_yes;
    QPushButton* m_no;
};
