// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

struct AVFrame;
struct AVPacket;

/// FFmpeg's objects, released with their owner.
struct FreePacket {
    void operator()(AVPacket* packet) const;
};
struct FreeFrame {
    void operator()(AVFrame* frame) const;
};
using MediaPacket = std::unique_ptr<AVPacket, FreePacket>;
using MediaFrame = std::unique_ptr<AVFrame, FreeFrame>;
