// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <memory>

class PackageDigest;
class QWidget;

/// Shows the MD5 of a firmware package that the operator chooses, as text that can be copied.
class Md5Tool : public QObject
{
    Q_OBJECT

public:
    explicit Md5Tool(QWidget* window);
    ~Md5Tool() override;

    /// Asks for a file, then shows its MD5 once it has been read. The question blocks, serving
    /// events.
    void run();

private:
    void show();

    QWidget* m_window;
    bool m_choosing = false;
    std::unique_ptr<PackageDigest> m_digest;
};
