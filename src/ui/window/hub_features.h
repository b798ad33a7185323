// SPDX-License-Identifier: MIT
#pragma once

#include "common/command_runner.h"
#include "device/device_registry.h"
#include "ui/configuration/configuration_save.h"
#include "ui/configuration/parameter_panel.h"
#include "ui/control/audio_levels.h"
#include "ui/control/decode_control.h"
#include "ui/control/encoder_control.h"
#include "ui/control/live_control.h"
#include "ui/devices/device_absence.h"
#include "ui/devices/device_filter.h"
#include "ui/devices/device_hint.h"
#include "ui/devices/device_info.h"
#include "ui/devices/device_list.h"
#include "ui/devices/device_menu.h"
#include "ui/devices/device_selection.h"
#include "ui/devices/local_addresses.h"
#include "ui/hub/busy.h"
#include "ui/hub/exchange.h"
#include "ui/hub/hub.h"
#include "ui/hub/hub_state.h"
#include "ui/hub/orders.h"
#include "ui/monitor/monitor.h"
#include "ui/recordings/record_control.h"
#include "ui/recordings/recording_downloads.h"
#include "ui/recordings/recordings.h"
#include "ui/upgrade/drop_areas.h"
#include "ui/upgrade/upgrade_features.h"
#include "ui/window/closing.h"
#include "ui/window/crash_notice.h"
#include "ui/window/endings.h"
#include "ui/window/language.h"
#include "ui/window/tarn_hub.h"
#include "ui/window/tool_notice.h"
#include "ui/window/update_prompt.h"
#include "ui/window/window_frame.h"
#include "ui_tarn_hub.h"
#include "update/update_check.h"
#include "widgets/wheel_guard.h"

/// Everything the window forwards to. Members are made in this order: what a feature uses stands
/// before it.
struct Tarn_Hub::Features {
    Features(Tarn_Hub* window, const Options& options);

    /// What is between the rooms: who of one hears news of another.
    void connectRooms();
    /// What the features begin with, once the window has its size.
    void start();
    /// The selected box can be told nothing, or less than usual; empty: it can be told everything.
    void hinder(const QString& why, bool mayObey);

    /// Boxes are being upgraded or get their settings back, one is being told a list of commands,
    /// or recordings are being downloaded.
    bool mustNotEnd() const;
    /// Commands to a box are under way or about to be sent.
    bool isCommanding() const;

    Ui::Tarn_Hub form;
    HubState state;
    CommandRunner runner;
    std::unique_ptr<DeviceRegistry> devices;
    Exchange exchange;
    Orders orders;
    const Hub hub;

    Language language;
    WindowFrame frame;
    LocalAddresses localAddresses;
    CrashNotice* const crashNotice; // the form owns both, as it does its other widgets
    ToolNotice* const toolNotice;
    DropAreas dropAreas;
    WheelGuard wheelGuard;
    DeviceList deviceList;
    DeviceFilter deviceFilter;
    DeviceHint* const deviceHint; // the list owns both
    DeviceMenu* const deviceMenu;
    DeviceInfo deviceInfo;
    DeviceAbsence deviceAbsence;
    ParameterPanel panel;
    ConfigurationSave save;
    Busy controlBusy;
    EncoderControl encoder;
    AudioLevels audio;
    DecodeControl decode;
    LiveControl live;
    Recordings recordings;
    RecordingDownloads downloads;
    RecordControl record;
    DeviceSelection selection;
    Monitor monitor;
    UpgradeFeatures upgrade;
    UpdateCheck updateCheck;
    UpdatePrompt updatePrompt;
    Closing closing;
    Endings endings;
};
