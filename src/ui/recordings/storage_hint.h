// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

class ListWidget;

/// Says in an empty storage list why it is empty. Hidden while there are rows; takes no mouse
/// events; the list owns it.
class StorageHint : public QLabel
{
    Q_OBJECT

public:
    enum class Reason { Reading, NoRecordings, NotRead };

    explicit StorageHint(ListWidget* list);

    void setReason(Reason reason);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    ListWidget* m_list;
    Reason m_reason = Reason::Reading;
};
