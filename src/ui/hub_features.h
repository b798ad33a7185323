// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "device/device_registry.h"
#include "media/event_sockets.h"
#include "ui/action_dispatcher.h"
#include "ui/audio_levels.h"
#include "ui/busy.h"
#include "ui/command_replies.h"
#include "ui/configuration_save.h"
#include "ui/crash_notice.h"
#include "ui/decode_control.h"
#include "ui/device_info.h"
#include "ui/device_list.h"
#include "ui/device_selection.h"
#include "ui/drop_areas.h"
#include "ui/encoder_control.h"
#include "ui/event_pane.h"
#include "ui/hub.h"
#include "ui/hub_state.h"
#include "ui/language.h"
#include "ui/live_control.h"
#include "ui/local_addresses.h"
#include "ui/monitor.h"
#include "ui/parameter_panel.h"
#include "ui/record_control.h"
#include "ui/recording_downloads.h"
#include "ui/recordings.h"
#include "ui/result_dispatcher.h"
#include "ui/tarn_hub.h"
#include "ui/update_prompt.h"
#include "ui/upgrade_features.h"
#include "ui/value_controls.h"
#include "ui/window_frame.h"
#include "ui_tarn_hub.h"
#include "update/update_check.h"

/// Everything the window forwards to. Members are made in this order: what a feature uses stands
/// before it.
struct Tarn_Hub::Features {
    Features(Tarn_Hub* window, const Options& options);

    /// Boxes are being upgraded or get their settings back, or recordings are being downloaded.
    bool mustNotEnd() const;

    Ui::Tarn_Hub form;
    HubState state;
    CommandRunner runner;
    std::unique_ptr<DeviceRegistry> devices;
    const Hub hub;

    ResultDispatcher results;
    CommandReplies replies;
    ActionDispatcher actions;

    Language language;
    WindowFrame frame;
    LocalAddresses localAddresses;
    CrashNotice* const crashNotice; // the form owns it, as it does its other widgets
    DropAreas dropAreas;
    ValueControls valueControls;
    DeviceList deviceList;
    DeviceInfo deviceInfo;
    ParameterPanel panel;
    ConfigurationSave save;
    Busy controlBusy;
    EncoderControl encoder;
    AudioLevels audio;
    DecodeControl decode;
    LiveControl live;
    EventSockets events;
    EventPane streamPane;
    EventPane mediaPane;
    Recordings recordings;
    RecordingDownloads downloads;
    RecordControl record;
    DeviceSelection selection;
    Monitor monitor;
    UpgradeFeatures upgrade;
    UpdateCheck updateCheck;
    UpdatePrompt updatePrompt;
};
