// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QTimer>

class QLabel;
class QTableWidget;
class UpgradeFleet;

/// The report of the upgrades as a table, newest batch first, kept up to date while it is open.
/// Texts of boxes are shown plain; cells can be copied.
class UpgradeReportDialog : public QDialog
{
    Q_OBJECT

public:
    UpgradeReportDialog(const UpgradeFleet& fleet, QWidget* parent);

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fill();
    void label();
    void giveRoomToNotes();
    void copySelection() const;

    const UpgradeFleet& m_fleet;
    QTableWidget* m_table;
    QLabel* m_summary;
    QLabel* m_path;
    QTimer m_clock;
};
