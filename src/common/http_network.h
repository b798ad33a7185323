// SPDX-License-Identifier: MIT
#pragma once

#include "common/http_connection.h"

#include <QObject>
#include <QThread>

class HttpPool;

/// Plain GETs on a thread of their own: what a server sends, however much or badly, reaches the
/// thread of the owner as one finished answer within the limits. Boxes and strangers have pools of
/// connections apart, so that no stranger holds up a box.
class HttpNetwork : public QObject
{
    Q_OBJECT

public:
    HttpNetwork();
    /// Ends within a moment: nothing is waited for, and what was asked is not answered any more.
    ~HttpNetwork() override;

    /// Each question is answered once, later; its `id` is the caller's.
    void ask(const HttpQuestion& question);

signals:
    void answered(const HttpAnswer& answer);

private:
    QThread m_thread;
    HttpPool* m_boxes; ///< both live in the thread
    HttpPool* m_strangers;
};
