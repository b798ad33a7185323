// SPDX-License-Identifier: MIT
#pragma once

#include "ui/hub/hub.h"
#include "ui/hub/list_hint.h"

class TreeView;

/// Says in an empty information list why it is empty.
class InfoHint final : public ListHint
{
    Q_OBJECT

public:
    InfoHint(const Hub& hub, TreeView* list);

protected:
    QString words() const override;

private:
    const Hub m_hub;
};
