// SPDX-License-Identifier: MIT
#pragma once

#include "tests/ui/window/window_fixture.h"

#include "widgets/input_ui.h"
#include "widgets/ip_address.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>

/// A window of its own for each test, with boxes whose settings are known.
class ConfigurationFixture : public QObject
{
    Q_OBJECT

protected:
    void prepare(const QString& block) { m_fixture = std::make_unique<WindowFixture>(block); }

    sim::VirtualBox* selectBox(int host)
    {
        sim::VirtualBox* box = m_fixture->lan().find(m_fixture->ip(host));
        if (!box)
            box = m_fixture->addBox(host);
        const QMap<QString, QString> settings{{"eParam_NDIName", "Stage Left"},
                                              {"eParam_NDIHXQuality", "3"},
                                              {"eParam_HXEncProfile", "main"},
                                              {"eParam_HXControlRate", "CBR"},
                                              {"eParam_NDIHXGopLength", "60"},
                                              {"eParam_NDIHXBitRate", "8000"},
                                              {"eParam_DHCP", "0"},
                                              {"eParam_IPAddress", "10.1.2.3"},
                                              {"eParam_NetMask", "255.255.255.0"},
                                              {"eParam_NTPServer", "ntp.example"},
                                              {"eParam_NDIHDR", "0"},
                                              {"eParam_NDIEncMode", "0"},
                                              {"eParam_NDIHXFormat", "2"},
                                              {"eParam_SDIVolume", "20"},
                                              {"eParam_LineinVolume", "11"},
                                              {"eParam_LineinDelay", "341"}};
        for (auto it = settings.cbegin(); it != settings.cend(); ++it)
            box->setParameter(it.key(), it.value());
        if (!m_fixture->isOpen())
            m_fixture->open();
        [&] { QTRY_VERIFY_WITH_TIMEOUT(m_fixture->item(host), 12000); }();
        QTest::qWait(300);
        box->clearRequests();
        m_fixture->clickRow(host);
        [&] { QTRY_VERIFY(box->requests().size() >= 24); }();
        QTest::qWait(200);
        box->clearRequests();
        return box;
    }

    /// "name=value" of each parameter written to the box, in order.
    static QStringList writes(const sim::VirtualBox& box)
    {
        QStringList list;
        const auto requests = box.requests();
        for (const sim::BoxRequest& request : requests) {
            const QString body = QString::fromUtf8(request.body);
            if (request.path == "/config" && request.method == "POST")
                list << body.section("param_name=", 1).replace("&value=", "=");
        }
        return list;
    }

    static QStringList actions(const sim::VirtualBox& box)
    {
        QStringList list;
        const auto requests = box.requests();
        for (const sim::BoxRequest& request : requests) {
            if (request.path == "/control")
                list << QString::fromUtf8(request.body).section("action=", 1);
        }
        return list;
    }

    QString shown(const QString& widget) const
    {
        auto* found = m_fixture->child<QWidget>(widget.toUtf8().constData());
        if (auto* address = qobject_cast<IPAddress*>(found))
            return address->getIP();
        if (auto* input = qobject_cast<Inputui*>(found))
            return input->text();
        if (auto* line = qobject_cast<QLineEdit*>(found))
            return line->text();
        if (auto* spin = qobject_cast<QSpinBox*>(found))
            return QString::number(spin->value());
        if (auto* button = qobject_cast<QAbstractButton*>(found))
            return button->isChecked() ? "on" : "off";
        return QString();
    }

    void clickSave() { QTest::mouseClick(m_fixture->child<QWidget>("save"), Qt::LeftButton); }

    std::unique_ptr<WindowFixture> m_fixture;
};
