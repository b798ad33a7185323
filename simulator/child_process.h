// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>

namespace sim
{

/// A child that ends with this process, however that ends. Used in one thread, which must live as
/// long as the child.
class ChildProcess : public QProcess
{
    Q_OBJECT

public:
    explicit ChildProcess(QObject* parent = nullptr);
    ~ChildProcess() override; ///< kills the child

protected:
    void setupChildProcess() override;
};

} // namespace sim
