// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class Spark_Http;

/// Asks the update server, without waiting, what the newest versions are.
class UpdateCheck
{
public:
    /// `server` is scheme and host. `http` outlives this object.
    UpdateCheck(Spark_Http& http, QString server);

    /// Requests both descriptors; the answers come by Spark_Http::S_finished under the types
    /// "toupgrade" (the program) and "toupgradekora" (box firmware).
    void start();

private:
    Spark_Http& m_http;
    const QString m_server;
};
