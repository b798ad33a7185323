// SPDX-License-Identifier: MIT
#include "ui/control/control_parameters.h"

#include "common/box_protocol.h"
#include "ui/control/control_area.h"
#include "ui/hub/hub_state.h"

namespace
{

/// The mode's buttons follow two parameters; nothing is shown before both are known.
void showEncoder(const Ui::ControlArea& area, const HubState& state)
{
    if (state.encoderMode().isEmpty() || state.encoderFormat().isEmpty())
        return;
    const int mode = state.encoderMode().toInt();
    const int format = state.encoderFormat().toInt();
    area.HB->setChecked(mode == 1);
    area.HX2->setChecked(mode == 0 && format < 3);
    area.HX3->setChecked(mode == 0 && format >= 3);
    (format % 2 != 0 ? area.H264 : area.H265)->setChecked(true);
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
    return {
        {Box::NDIEncMode, shownBy(encoderMode)},
        {Box::NDIHXFormat, shownBy(encoderFormat)},
        // The slider follows its spin box.
        {Box::SDIVolume, notSaved(number(area.eParam_SDIVolume))},
        {Box::LineinVolume, notSaved(number(area.eParam_LineinVolume))},
        {Box::LineinDelay, notSaved(number(area.eParam_LineinDelay))},
        {Box::NDIDecodeList,
         listShownBy([&state](const QVariant& list) { state.setDecodeList(list); })},
    };
}
