// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// What a descriptor of the update server says of a package. Everything in it is bounded and of the
/// form that it has to have.
struct PackageOffer {
    enum class Kind { Program, Firmware };
    Kind kind = Kind::Program;
    QString version; ///< empty for firmware: its name tells it
    QString url;     ///< encoded
    QString name;    ///< the last part of `url`, made a safe file name
    QString md5;     ///< lower-case hex, of firmware
    QString sha256;  ///< lower-case hex; empty: not said
    QByteArray signature;
    QString problem; ///< why this is no offer; empty: it is one
};

/// Reads the descriptor of the program's newest version.
PackageOffer readProgramOffer(const QString& descriptor);
/// Reads that of the box firmware.
PackageOffer readFirmwareOffer(const QString& descriptor);
