// SPDX-License-Identifier: MIT
#include "ui/window/closing.h"

#include "widgets/message_box.h"

#include <QApplication>
#include <QWidget>

Closing::Closing(std::function<bool()> isUnderWay, QWidget& window)
    : QObject(nullptr), m_isUnderWay(std::move(isUnderWay)), m_window(window)
{
    m_again.setInterval(100);
    connect(&m_again, &QTimer::timeout, this, &Closing::tryAgain);
}

bool Closing::mayClose()
{
    if (!m_isUnderWay())
        return true;
    if (!m_notice || !m_notice->isVisible())
        m_notice = messageBox::notify(tr("正在向KORA发送命令，完成后将自动关闭。"), &m_window);
    m_again.start();
    return false;
}

void Closing::tryAgain()
{
    if (m_isUnderWay() || QApplication::activeModalWidget())
        return;
    m_again.stop();
    if (m_notice)
        m_notice->close();
    m_window.close();
}
