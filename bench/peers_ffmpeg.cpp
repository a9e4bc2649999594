// FFmpeg's v210 decoder (libavcodec) beside qx_v210yuv422p10: it decodes a 1920 x 1 frame in line
// mode and a 1920 x 1080 frame in frame mode, to yuv422p10le, the same planes and bytes.
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/log.h>
}

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench.h"

namespace qxbench {
namespace {

constexpr int kV210Stride = kWidth / 6 * 16;  // bytes of one 1920-pixel v210 row

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "libavcodec v210: %s\n", what);
  std::exit(1);
}

// A decoder and one packet of random v210 rows, kept for the life of the process.
struct Decoder {
  AVCodecContext* ctx;
  AVPacket* packet;
  AVFrame* frame;
  int rows;

  explicit Decoder(int rows) : rows(rows) {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_V210);
    if (!codec) fail("no decoder");
    ctx = avcodec_alloc_context3(codec);
    packet = av_packet_alloc();
    frame = av_frame_alloc();
    if (!ctx || !packet || !frame) fail("out of memory");
    ctx->width = kWidth;
    ctx->height = rows;
    ctx->thread_count = 1;
    if (avcodec_open2(ctx, codec, nullptr) < 0) fail("cannot open the decoder");
    if (av_new_packet(packet, kV210Stride * rows) < 0) fail("out of memory");
    std::memcpy(packet->data, buffers().a, std::size_t{kV210Stride} * rows);
  }

  void decode() {
    if (avcodec_send_packet(ctx, packet) < 0 || avcodec_receive_frame(ctx, frame) < 0)
      fail("decoding failed");
    if (frame->format != AV_PIX_FMT_YUV422P10LE || frame->width != kWidth || frame->height != rows)
      fail("unexpected output format");
    av_frame_unref(frame);
  }
};

const bool added = [] {
  av_log_set_level(AV_LOG_ERROR);
  for (const Mode mode : {Mode::kLine, Mode::kFrame}) {
    auto* d = new Decoder(rows_of(mode));
    d->decode();
    add_peer("v210yuv422p10", "", mode, "libavcodec:v210",
             "decodes whole frames through the decoder interface (a per-frame cost)",
             [d] { d->decode(); });
  }
  return true;
}();

}  // namespace
}  // namespace qxbench
