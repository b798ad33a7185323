// SPDX-License-Identifier: MIT
#include "ui/configuration/configuration_parameters.h"

#include "common/box_protocol.h"
#include "ui/configuration/configuration_area.h"
#include "ui/hub/hub_state.h"

namespace Box = BoxProtocol;

namespace
{

/// A static address counts only while the box is not given one.
QString staticIsUnused(const QCheckBox& dhcp)
{
    return dhcp.isChecked()
               ? QCoreApplication::translate("ConfigurationArea", "DHCP已打开，关闭后才使用此设置")
               : QString();
}

} // namespace

ParameterTable configurationParameters(const Ui::ConfigurationArea& area, HubState& state)
{
    using namespace Bind;
    const auto dhcp = [&state](bool on) { state.setShownDhcp(on); };
    const auto ip = [&state](const QString& shown) { state.setShownIp(shown); };
    const auto unused = [&area] { return staticIsUnused(*area.DHCP); };
    const auto mask = [&state](const QString& shown) { state.setShownMask(shown); };
    return {
        {Box::NDIName, text(area.eParam_NDIName), {area.caption_0}},
        {Box::NDIHXQuality,
         numberedChoice(
             {area.quality_0, area.quality_1, area.quality_2, area.quality_3, area.quality_4}),
         {area.caption_1}},
        {Box::HXEncProfile,
         choice({{area.baseline, "baseline"}, {area.main, "main"}, {area.high, "high"}}, area.high),
         {area.caption_2}},
        {Box::HXControlRate,
         choice({{area.VBR, "VBR"}, {area.CBR, "CBR"}, {area.CVBR, "CVBR"}}, area.CVBR),
         {area.caption_3}},
        {Box::NDIHXGopLength,
         number(area.eParam_NDIHXGopLength, area.eParam_NDIHXGopLengthSlider),
         {area.caption_4}},
        {Box::NDIHXBitRate,
         kiloAsMega(area.eParam_NDIHXBitRate, area.eParam_NDIHXBitRateSlider),
         {area.caption_5}},
        {Box::DHCP, flag(area.DHCP, dhcp), {area.caption_6}},
        {Box::IPAddress, address(area.eParam_IPAddress, ip), {area.caption_7}, unused},
        {Box::NetMask, address(area.eParam_NetMask, mask), {area.caption_8}, unused},
        {Box::NTPServer, text(area.eParam_NTPServer), {area.caption_9}},
        {Box::NDIHDR, choice({{area.SDR, "0"}, {area.HDR, "1"}}), {area.caption_10}},
        // What is saved is for encoding.
        {Box::HDMIMode, constant(QStringLiteral("1"))},
    };
}
