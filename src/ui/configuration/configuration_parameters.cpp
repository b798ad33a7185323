// SPDX-License-Identifier: MIT
#include "ui/configuration/configuration_parameters.h"

#include "common/box_protocol.h"
#include "ui/configuration/configuration_area.h"
#include "ui/hub/hub_state.h"

namespace Box = BoxProtocol;

ParameterTable configurationParameters(const Ui::ConfigurationArea& area, HubState& state)
{
    using namespace Bind;
    const auto dhcp = [&state](bool on) { state.setShownDhcp(on); };
    const auto ip = [&state](const QString& shown) { state.setShownIp(shown); };
    const auto mask = [&state](const QString& shown) { state.setShownMask(shown); };
    return {
        {Box::NDIName, text(area.eParam_NDIName)},
        {Box::NDIHXQuality, numberedChoice({area.quality_0, area.quality_1, area.quality_2,
                                            area.quality_3, area.quality_4})},
        {Box::HXEncProfile,
         choice({{area.baseline, "baseline"}, {area.main, "main"}, {area.high, "high"}},
                area.high)},
        {Box::HXControlRate,
         choice({{area.VBR, "VBR"}, {area.CBR, "CBR"}, {area.CVBR, "CVBR"}}, area.CVBR)},
        {Box::NDIHXGopLength, number(area.eParam_NDIHXGopLength)},
        {Box::NDIHXBitRate, kiloAsMega(area.eParam_NDIHXBitRate)},
        {Box::DHCP, flag(area.DHCP, dhcp)},
        {Box::IPAddress, address(area.eParam_IPAddress, ip)},
        {Box::NetMask, address(area.eParam_NetMask, mask)},
        {Box::NTPServer, text(area.eParam_NTPServer)},
        {Box::NDIHDR, choice({{area.SDR, "0"}, {area.HDR, "1"}})},
        // What is saved is for encoding.
        {Box::HDMIMode, constant(QStringLiteral("1"))},
    };
}
