// FFmpeg's libraries, with owners for what they allocate.
#pragma once

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace zkey {

struct LibavDelete {
    void operator()(AVCodecContext *p) const { avcodec_free_context(&p); }
    void operator()(AVFrame *p) const { av_frame_free(&p); }
    void operator()(AVPacket *p) const { av_packet_free(&p); }
    void operator()(AVCodecParameters *p) const { avcodec_parameters_free(&p); }
    void operator()(SwsContext *p) const { sws_freeContext(p); }
};
template <class T>
using Libav = std::unique_ptr<T, LibavDelete>;

/// A path as the libraries have to see it: what stands before a colon would be the name of a protocol to them.
inline std::string LibavPath(const std::string &path) { return path.find(':') < path.find('/') ? "file:" + path : path; }

/// An error number of the libraries in words.
inline std::string LibavError(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    return av_strerror(error, text, sizeof text) == 0 ? text : "unknown error";
}

}    // namespace zkey
