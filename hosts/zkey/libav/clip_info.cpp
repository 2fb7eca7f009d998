#include <algorithm>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/libav/clip.h"

namespace zkey {
namespace {

bool IsFullRange(const AVFrame &frame) {
    return frame.color_range == AVCOL_RANGE_JPEG || PlainFormat(frame.format) != frame.format;
}

int SwsMatrix(const AVFrame &frame) {
    switch (frame.colorspace) {
        case AVCOL_SPC_BT709:
            return SWS_CS_ITU709;
        case AVCOL_SPC_FCC:
            return SWS_CS_FCC;
        case AVCOL_SPC_SMPTE240M:
            return SWS_CS_SMPTE240M;
        case AVCOL_SPC_BT2020_NCL:
        case AVCOL_SPC_BT2020_CL:
            return SWS_CS_BT2020;
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
            return SWS_CS_ITU601;
        default:
            return MeaningBySize(frame.width, frame.height).IsBt709() ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

}    // namespace

AVPixelFormat PlainFormat(int format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P:
            return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ411P:
            return AV_PIX_FMT_YUV411P;
        case AV_PIX_FMT_YUVJ422P:
            return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ440P:
            return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ444P:
            return AV_PIX_FMT_YUV444P;
        default:
            return static_cast<AVPixelFormat>(format);
    }
}

YuvMeaning MeaningOf(const AVFrame &frame) {
    YuvMeaning m = MeaningBySize(frame.width, frame.height);
    switch (frame.colorspace) {
        case AVCOL_SPC_BT709:
            m = kBt709;
            break;
        case AVCOL_SPC_FCC:
            m = {0.30, 0.11, false};
            break;
        case AVCOL_SPC_SMPTE240M:
            m = {0.212, 0.087, false};
            break;
        case AVCOL_SPC_BT2020_NCL:
        case AVCOL_SPC_BT2020_CL:
            m = {0.2627, 0.0593, false};
            break;
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
            m = kBt601;
            break;
        default:
            break;
    }
    m.fullRange = IsFullRange(frame);
    return m;
}

void ConvertPicture(const AVFrame &frame, AVPixelFormat to, int width, int height, uint8_t *dst, int step,
                    Libav<SwsContext> &cached) {
    constexpr int kFlags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT;
    const AVPixelFormat from = PlainFormat(frame.format);
    cached.reset(sws_getCachedContext(cached.release(), frame.width, frame.height, from, width, height, to, kFlags, nullptr,
                                      nullptr, nullptr));
    if (!cached) Fail(std::string("pictures of the format ") + av_get_pix_fmt_name(from) + " cannot be converted");
    sws_setColorspaceDetails(cached.get(), sws_getCoefficients(SwsMatrix(frame)), IsFullRange(frame) ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    uint8_t *planes[4] = {dst, nullptr, nullptr, nullptr};
    const int steps[4] = {step, 0, 0, 0};
    sws_scale(cached.get(), frame.data, frame.linesize, 0, frame.height, planes, steps);
}

}    // namespace zkey
