// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

class BatchUpgrade;
class QWidget;
class TreeView;

/// Asks with what the selected boxes are to be upgraded, and whether; then starts the batch.
class BatchStart : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of the dialogs.
    BatchStart(TreeView* deviceView, BatchUpgrade& batch, QWidget* window);

    // Both block and serve events.
    /// Lets the operator choose a package, then starts.
    void choosePackage();
    /// Starts with what was given, after a question; says why not when it cannot.
    void startBatchUpgrade(const QStringList& files);

private:
    void setAsking(bool asking);

    TreeView* m_view;
    BatchUpgrade& m_batch;
    QWidget* m_window;
    bool m_asking = false;
};
