// SPDX-License-Identifier: MIT
#include "media/media_packet.h"

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/frame.h>
}

void FreePacket::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}

void FreeFrame::operator()(AVFrame* frame) const
{
    av_frame_free(&frame);
}
