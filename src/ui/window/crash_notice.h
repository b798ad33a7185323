// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

#include <memory>

class QBoxLayout;
class QLabel;
class QPushButton;
class QThread;
class QToolButton;

/// A line under the device list that tells, once for each crash, that a dump of it was saved. It
/// stays until it is closed and stands in nobody's way.
class CrashNotice : public QFrame
{
    Q_OBJECT

public:
    /// Takes a place at the end of `place`, hidden.
    explicit CrashNotice(QBoxLayout* place);
    ~CrashNotice() override;

    /// Tidies the folder of dumps, ending in "/", in the background, and shows itself when there is
    /// one that nobody has been told of. An empty folder name does nothing.
    void start(const QString& folder);

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void openFolder();

    QLabel* m_text;
    QPushButton* m_open;
    QToolButton* m_close;
    QString m_folder;
    std::unique_ptr<QThread> m_thread;
};
