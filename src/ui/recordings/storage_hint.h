// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/list_hint.h"

class ListWidget;

/// Says in an empty storage list why it is empty.
class StorageHint final : public ListHint
{
    Q_OBJECT

public:
    enum class Reason { Reading, NoRecordings, NotRead };

    explicit StorageHint(ListWidget* list);

    void setReason(Reason reason);

protected:
    QString words() const override;

private:
    Reason m_reason = Reason::Reading;
};
