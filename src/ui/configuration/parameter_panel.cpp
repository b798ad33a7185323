// SPDX-License-Identifier: MIT
#include "ui/configuration/parameter_panel.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/device_registry.h"
#include "device/item.h"
#include "device/tree_model.h"
#include "ui/configuration/configuration_area.h"
#include "ui/control/control_area.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub_state.h"

namespace
{

namespace Box = BoxProtocol;

const QString requestType = QStringLiteral("getConfigDeviceinfo");

/// In the order in which they are read. The decode list is not part of a snapshot.
constexpr QLatin1String panelParameters[] = {
    Box::NDIHXFormat, Box::NDIEncMode,     Box::NDIHXQuality, Box::HXEncProfile, Box::HXControlRate,
    Box::NDIName,     Box::DHCP,           Box::IPAddress,    Box::NetMask,      Box::NTPServer,
    Box::NDIHDR,      Box::NDIHXGopLength, Box::NDIHXBitRate, Box::SDIVolume,    Box::LineinVolume,
    Box::LineinDelay, Box::NDIDecodeList,
};

bool isPanelParameter(const QString& name)
{
    for (const QLatin1String known : panelParameters) {
        if (name == known)
            return true;
    }
    return false;
}

/// Text or a number; a list, an object or nothing at all is no value of a parameter.
bool isScalar(const QVariant& value)
{
    return value.type() == QVariant::String || value.type() == QVariant::Double ||
           value.type() == QVariant::LongLong;
}

int kilobitsToMegabits(const QString& text, int maximum)
{
    const double megabits = double(text.toLongLong()) / 1000.0;
    return megabits <= 0 ? 0 : int(qMin(megabits, double(maximum)));
}

/// The value of the first checked button, empty when none is.
QString checkedValue(std::initializer_list<std::pair<QRadioButton*, const char*>> buttons)
{
    for (const auto& [button, value] : buttons) {
        if (button->isChecked())
            return QLatin1String(value);
    }
    return QString();
}

} // namespace

ParameterPanel::ParameterPanel(const Hub& hub, Ui::ConfigurationArea& config,
                               Ui::ControlArea& control)
    : QObject(nullptr), m_hub(hub), m_config(config), m_control(control)
{
    showDefaults();
    hub.exchange.onResult(requestType, [this](const HttpResult& result) { handleReply(result); });
    connect(&hub.state, &HubState::readingWanted, this,
            [this] { getConfigDeviceinfo(QString(), QString()); });
}

/// What the fields show until a box has been read.
void ParameterPanel::showDefaults()
{
    m_config.eParam_IPAddress->setIP(QStringLiteral("192.168.1.88"));
    m_config.eParam_NetMask->setIP(QStringLiteral("255.255.255.0"));
    m_config.eParam_NDIName->setText(koraFamily());
    m_config.eParam_NTPServer->setText(QStringLiteral("pool.ntp.org"));
}

void ParameterPanel::getConfigDeviceinfo(const QString& suffix, const QString& ip)
{
    const bool snapshot = !suffix.isEmpty();
    const QString address = snapshot ? ip : m_hub.state.deviceIp();
    const QString type = snapshot ? QStringLiteral("saveConfig") + suffix : requestType;
    for (const QLatin1String parameter : panelParameters) {
        if (!snapshot || parameter != Box::NDIDecodeList)
            m_hub.http.get(type, Box::readUrl(address, parameter), false);
    }
}

QStringList ParameterPanel::snapshotParameters()
{
    QStringList names;
    for (const QLatin1String parameter : panelParameters) {
        if (parameter != Box::NDIDecodeList)
            names << parameter;
    }
    return names;
}

void ParameterPanel::handleReply(const HttpResult& result)
{
    // The name becomes the name of a property: only names of ours may.
    if (!isPanelParameter(result.parameterName))
        return;
    const bool list = result.parameterName == Box::NDIDecodeList;
    if (list ? result.value.type() != QVariant::List : !isScalar(result.value))
        return;
    if (Item* device = m_hub.devices.model().find(result.deviceIp))
        device->setParameter(result.parameterName, result.value);
    // The answer of a box that was selected before comes too late for the panels.
    if (result.deviceIp != m_hub.state.deviceIp())
        return;
    if (list)
        m_hub.state.setDecodeList(result.value);
    else
        show(result.parameterName, result.value.toString());
}

void ParameterPanel::show(const QString& parameter, const QString& value)
{
    if (showNetwork(parameter, value) || showEncoder(parameter, value) ||
        showNumber(parameter, value))
        return;
    if (parameter == Box::NDIName)
        m_config.eParam_NDIName->setText(value);
    else if (parameter == Box::NTPServer)
        m_config.eParam_NTPServer->setText(value);
}

bool ParameterPanel::showNetwork(const QString& parameter, const QString& value)
{
    if (parameter == Box::DHCP) {
        if (value == QLatin1String("0") || value == QLatin1String("1"))
            m_config.DHCP->setChecked(value == QLatin1String("1"));
        m_hub.state.setShownDhcp(m_config.DHCP->isChecked());
    } else if (parameter == Box::IPAddress) {
        m_config.eParam_IPAddress->setIP(value);
        m_hub.state.setShownIp(m_config.eParam_IPAddress->getIP());
    } else if (parameter == Box::NetMask) {
        m_config.eParam_NetMask->setIP(value);
        m_hub.state.setShownMask(m_config.eParam_NetMask->getIP());
    } else {
        return false;
    }
    return true;
}

bool ParameterPanel::showEncoder(const QString& parameter, const QString& value)
{
    if (parameter == Box::NDIHXFormat) {
        m_hub.state.setEncoderFormat(value);
        decodeEncoderMode();
    } else if (parameter == Box::NDIEncMode) {
        m_hub.state.setEncoderMode(value);
        decodeEncoderMode();
    } else if (parameter == Box::NDIHXQuality) {
        QRadioButton* const buttons[] = {m_config.quality_0, m_config.quality_1, m_config.quality_2,
                                         m_config.quality_3, m_config.quality_4};
        const int quality = value.toInt();
        if (quality >= 0 && quality < 5)
            buttons[quality]->setChecked(true);
    } else if (parameter == Box::HXEncProfile) {
        QRadioButton* button = value == QLatin1String("baseline") ? m_config.baseline
                               : value == QLatin1String("main")   ? m_config.main
                                                                  : m_config.high;
        button->setChecked(true);
    } else if (parameter == Box::HXControlRate) {
        QRadioButton* button = value == QLatin1String("VBR")   ? m_config.VBR
                               : value == QLatin1String("CBR") ? m_config.CBR
                                                               : m_config.CVBR;
        button->setChecked(true);
    } else if (parameter == Box::NDIHDR) {
        if (value == QLatin1String("0"))
            m_config.SDR->setChecked(true);
        else if (value == QLatin1String("1"))
            m_config.HDR->setChecked(true);
    } else {
        return false;
    }
    return true;
}

bool ParameterPanel::showNumber(const QString& parameter, const QString& value)
{
    if (parameter == Box::NDIHXGopLength) {
        m_config.eParam_NDIHXGopLength->setValue(value.toInt());
    } else if (parameter == Box::NDIHXBitRate) {
        QSpinBox* box = m_config.eParam_NDIHXBitRate;
        box->setValue(kilobitsToMegabits(value, box->maximum()));
    } else if (parameter == Box::SDIVolume) {
        // The slider follows its spin box, here and below.
        m_control.eParam_SDIVolume->setValue(value.toInt());
    } else if (parameter == Box::LineinVolume) {
        m_control.eParam_LineinVolume->setValue(value.toInt());
    } else if (parameter == Box::LineinDelay) {
        m_control.eParam_LineinDelay->setValue(value.toInt());
    } else {
        return false;
    }
    return true;
}

void ParameterPanel::decodeEncoderMode()
{
    if (m_hub.state.encoderMode().isEmpty() || m_hub.state.encoderFormat().isEmpty())
        return;
    const int mode = m_hub.state.encoderMode().toInt();
    const int format = m_hub.state.encoderFormat().toInt();
    m_control.HB->setChecked(mode == 1);
    m_control.HX2->setChecked(mode == 0 && format < 3);
    m_control.HX3->setChecked(mode == 0 && format >= 3);
    (format % 2 != 0 ? m_control.H264 : m_control.H265)->setChecked(true);
}

QMap<QString, QString> ParameterPanel::valuesToSave() const
{
    QMap<QString, QString> values;
    const auto add = [&values](QLatin1String parameter, const QString& value) {
        values.insert(parameter, value);
    };
    const auto addChecked = [&add](QLatin1String parameter, const QString& value) {
        if (!value.isEmpty())
            add(parameter, value);
    };
    add(Box::NDIName, Box::escapeEquals(m_config.eParam_NDIName->text()));
    addChecked(Box::NDIHXQuality, checkedValue({{m_config.quality_0, "0"},
                                                {m_config.quality_1, "1"},
                                                {m_config.quality_2, "2"},
                                                {m_config.quality_3, "3"},
                                                {m_config.quality_4, "4"}}));
    addChecked(Box::HXEncProfile, checkedValue({{m_config.baseline, "baseline"},
                                                {m_config.main, "main"},
                                                {m_config.high, "high"}}));
    addChecked(
        Box::HXControlRate,
        checkedValue({{m_config.VBR, "VBR"}, {m_config.CBR, "CBR"}, {m_config.CVBR, "CVBR"}}));
    add(Box::NDIHXGopLength, QString::number(m_config.eParam_NDIHXGopLength->value()));
    add(Box::NDIHXBitRate, QString::number(m_config.eParam_NDIHXBitRate->value() * 1000));
    add(Box::DHCP, QString::number(m_config.DHCP->isChecked() ? 1 : 0));
    add(Box::IPAddress, m_config.eParam_IPAddress->getIP());
    add(Box::NetMask, m_config.eParam_NetMask->getIP());
    add(Box::NTPServer, Box::escapeEquals(m_config.eParam_NTPServer->text()));
    add(Box::HDMIMode, QStringLiteral("1"));
    addChecked(Box::NDIHDR, checkedValue({{m_config.SDR, "0"}, {m_config.HDR, "1"}}));
    return values;
}
