// SPDX-License-Identifier: MIT
#pragma once

#include "tests/ui/window/window_fixture.h"

#include <QSlider>

/// The window with one selected box whose control area is to be tested.
class ControlFixture : public QObject
{
    Q_OBJECT

protected:
    void openWindow(const QString& block)
    {
        StartUp::dress(*qApp);
        m_fixture = std::make_unique<WindowFixture>(block);
        m_box = m_fixture->addBox(7);
        m_fixture->open();
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(7), 10000);
        QTest::qWait(500);
    }

    void resetBox()
    {
        m_box->clearFaults();
        m_box->setDecodeSources({"STUDIO (Cam 1): 10.0.0.1:5961", "STUDIO (Cam 2): 10.0.0.1:5962"});
        setState("0", "1");
    }

    void closeDialogs()
    {
        if (QWidget* left = QApplication::activeModalWidget())
            left->close();
    }

    void setState(const QString& mode, const QString& format)
    {
        m_box->setParameter("eParam_NDIEncMode", mode);
        m_box->setParameter("eParam_NDIHXFormat", format);
        m_box->setParameter("eParam_SDIVolume", "10");
        m_box->setParameter("eParam_LineinDelay", "100");
        m_box->clearRequests();
        m_fixture->clickRow(7);
        QTRY_COMPARE(m_box->requests().size(), 24);
        QTest::qWait(100);
        QCOMPARE(m_fixture->window().property("eParam_NDIHXFormat").toString(), format);
        QCOMPARE(child<QSlider>("eParam_SDIVolumeSlider")->value(), 10);
        m_box->clearRequests();
    }

    /// What the box was told, in order, as "name=value" or "action…".
    QStringList told() const
    {
        QStringList list;
        const auto requests = m_box->requests();
        for (const sim::BoxRequest& request : requests) {
            if (request.method == "POST")
                list << QString::fromUtf8(request.body)
                            .replace("action=set&param_name=eParam_", "")
                            .replace("&value=", "=")
                            .replace("action=", "");
        }
        return list;
    }

    template <class T> T* child(const char* name) const { return m_fixture->child<T>(name); }
    void click(const char* name) { QTest::mouseClick(child<QWidget>(name), Qt::LeftButton); }

    std::unique_ptr<WindowFixture> m_fixture;
    sim::VirtualBox* m_box = nullptr;
};
