// SPDX-License-Identifier: MIT
#include "ui/control/control_parameters.h"

#include "common/box_protocol.h"
#include "ui/control/control_area.h"
#include "ui/hub/hub_state.h"

namespace
{

/// The mode's buttons follow two parameters; none is chosen before both are known.
void showEncoder(const Ui::ControlArea& area, const HubState& state)
{
    const bool known = !state.encoderMode().isEmpty() && !state.encoderFormat().isEmpty();
    const int mode = known ? state.encoderMode().toInt() : -1;
    const int format = state.encoderFormat().toInt();
    area.HB->setChecked(mode == 1);
    area.HX2->setChecked(mode == 0 && format < 3);
    area.HX3->setChecked(mode == 0 && format >= 3);
    // Two buttons of a group cannot both be off while each keeps the other from it.
    area.H264->setAutoExclusive(known);
    area.H265->setAutoExclusive(known);
    area.H264->setChecked(known && format % 2 != 0);
    area.H265->setChecked(known && format % 2 == 0);
}

} // namespace

namespace Box = BoxProtocol;

ParameterTable controlParameters(const Ui::ControlArea& area, HubState& state)
{
    using namespace Bind;
    const auto encoderMode = [&area, &state](const QString& mode) {
        state.setEncoderMode(mode);
        showEncoder(area, state);
    };
    const auto encoderFormat = [&area, &state](const QString& format) {
        state.setEncoderFormat(format);
        showEncoder(area, state);
    };
    const QVector<QWidget*> buttons{area.HB, area.HX2, area.HX3, area.H264, area.H265};
    return {
        {Box::NDIEncMode,
         shownBy(encoderMode, buttons),
         {area.caption_HB, area.caption_HX2, area.caption_HX3}},
        {Box::NDIHXFormat, shownBy(encoderFormat, buttons), {area.caption_codec}},
        {Box::SDIVolume,
         notSaved(number(area.eParam_SDIVolume, area.eParam_SDIVolumeSlider)),
         {area.label_eParam_SDIVolume}},
        {Box::LineinVolume,
         notSaved(number(area.eParam_LineinVolume, area.eParam_LineinVolumeSlider)),
         {area.label_eParam_LineinVolume}},
        {Box::LineinDelay,
         notSaved(number(area.eParam_LineinDelay, area.eParam_LineinDelaySlider)),
         {area.label_eParam_LineinDelay}},
        {Box::NDIDecodeList,
         listShownBy([&state](const QVariant& list) { state.setDecodeList(list); })},
    };
}
