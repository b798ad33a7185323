// SPDX-License-Identifier: MIT
#pragma once

#include "update/descriptor.h"

/// Whether somebody who has the vendor's secret key vouches for a package; docs/updates.md tells
/// what he signs.
namespace UpdateSignature
{

/// The bytes that are signed: they say nothing else of any other package.
QByteArray text(const PackageOffer& offer);

/// Empty when `offer` bears a signature of `key`, the 32 bytes of an Ed25519 public key; else what
/// is wrong with it.
QString problem(const PackageOffer& offer, const QByteArray& key);

} // namespace UpdateSignature
