// SPDX-License-Identifier: MIT
#pragma once

class CommandRunner;
class DeviceRegistry;
class HubState;
class QWidget;
class Spark_Http;

/// What every feature of the window may use. The window owns all of it and outlives the features.
struct Hub {
    HubState& state;
    DeviceRegistry& devices;
    CommandRunner& runner;
    Spark_Http& http;
    QWidget* window; ///< parent of dialogs
};
