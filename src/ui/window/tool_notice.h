// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QTimer>

#include <memory>

class LooseThread;
class QBoxLayout;
class QLabel;

/// A line under the device list that tells which of the programs that this one needs are missing,
/// and what to do. It goes by itself when they are there.
class ToolNotice : public QFrame
{
    Q_OBJECT

public:
    /// Takes a place at the end of `place`, hidden. `fping` is the one to use, empty: any.
    ToolNotice(QBoxLayout* place, QString fping);
    ~ToolNotice() override;

    /// Looks for them, now and from time to time, in the background.
    void start();

protected:
    void changeEvent(QEvent* event) override;

private:
    void look();
    void show(const QString& missing);
    void retranslate();

    const QString m_fping;
    QLabel* m_text;
    QString m_missing; ///< names, separated by blanks
    QTimer m_again;
    std::unique_ptr<LooseThread> m_thread;
};
