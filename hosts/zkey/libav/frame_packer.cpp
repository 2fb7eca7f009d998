#include "hosts/zkey/libav/frame_packer.h"

#include <algorithm>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/hand_over.h"

namespace zkey {
namespace {

/// 8-bit samples that stand alone in their bytes: where they are. False for every other format.
bool PlanesOf(const AVFrame &f, YuvPlanes &p) {
    p.y = f.data[0];
    p.cb = f.data[1];
    p.cr = f.data[2];
    p.lumaRow = f.linesize[0];
    p.chromaRow = f.linesize[1];
    p.interlaced = f.interlaced_frame != 0;
    p.leftSited = f.chroma_location != AVCHROMA_LOC_CENTER;
    switch (PlainFormat(f.format)) {
        case AV_PIX_FMT_YUV420P:
            // JPEG and MPEG-1 have their samples in the middle of four pixels.
            if (f.chroma_location == AVCHROMA_LOC_UNSPECIFIED) p.leftSited = PlainFormat(f.format) == f.format;
            p.arranged = eZFCC_I420;
            return true;
        case AV_PIX_FMT_YUV422P:
            p.shiftY = 0;
            return true;
        case AV_PIX_FMT_YUV440P:
            p.shiftX = 0;
            return true;
        case AV_PIX_FMT_YUV444P:
            p.shiftX = p.shiftY = 0;
            return true;
        case AV_PIX_FMT_NV12:
            p.cr = p.cb + 1;
            p.chromaStep = 2;
            p.arranged = eZFCC_NV12;
            return true;
        case AV_PIX_FMT_NV21:
            p.cr = f.data[1];
            p.cb = p.cr + 1;
            p.chromaStep = 2;
            p.arranged = eZFCC_NV12;
            return true;
        case AV_PIX_FMT_YUYV422:
        case AV_PIX_FMT_UYVY422: {
            const int luma = f.format == AV_PIX_FMT_YUYV422 ? 0 : 1;
            p.y = f.data[0] + luma;
            p.cb = f.data[0] + 1 - luma;
            p.cr = p.cb + 2;
            p.chromaRow = p.lumaRow;
            p.lumaStep = 2;
            p.chromaStep = 4;
            p.shiftY = 0;
            if (luma == 0) p.arranged = eZFCC_YUY2;
            return true;
        }
        default:
            return false;
    }
}

uint32_t Sample10(const AVFrame &f, int plane, int x, int y) {
    uint16_t v = 0;
    std::memcpy(&v, f.data[plane] + std::ptrdiff_t{y} * f.linesize[plane] + std::ptrdiff_t{x} * 2, 2);
    return v & 0x3FFU;
}

/// Calls `put(index, sample)` for all samples of a row in the order Cb, Y, Cr, Y; an odd last pixel fills its pair.
template <class Put>
void RowOf10(const AVFrame &f, int y, Put put) {
    for (int i = 0; i < (f.width + 1) / 2; ++i) {
        put(4 * i, Sample10(f, 1, i, y));
        put(4 * i + 1, Sample10(f, 0, 2 * i, y));
        put(4 * i + 2, Sample10(f, 2, i, y));
        put(4 * i + 3, Sample10(f, 0, std::min(2 * i + 1, f.width - 1), y));
    }
}

void StoreV210(const AVFrame &f, uint8_t *row, std::ptrdiff_t step) {
    for (int y = 0; y < f.height; ++y, row += step) {
        std::memset(row, 0, static_cast<std::size_t>(step));
        RowOf10(f, y, [&](int index, uint32_t v) {
            uint32_t word = 0;
            std::memcpy(&word, row + std::ptrdiff_t{index / 3} * 4, 4);
            word |= v << (10 * (index % 3));
            std::memcpy(row + std::ptrdiff_t{index / 3} * 4, &word, 4);
        });
    }
}

void StoreHdycFrom10(const AVFrame &f, uint8_t *row, std::ptrdiff_t step) {
    for (int y = 0; y < f.height; ++y, row += step) {
        RowOf10(f, y, [&](int index, uint32_t v) { row[index] = static_cast<uint8_t>(std::min((v + 2) >> 2, 255U)); });
    }
}

}    // namespace

FramePacker::Way FramePacker::WayOf(const AVFrame &f) {
    const YuvMeaning meaning = MeaningOf(f);
    switch (f.format) {
        case AV_PIX_FMT_BGR24:
            return {Route::Copy, eZFCC_RGB24};
        case AV_PIX_FMT_BGR0:
        case AV_PIX_FMT_BGRA:
            return {Route::Copy, eZFCC_RGB32};
        case AV_PIX_FMT_RGB24:
            return {Route::SwapRedBlue, eZFCC_RGB24};
        case AV_PIX_FMT_YUYV422:
            if (meaning.IsBt601()) return {Route::Copy, eZFCC_YUY2};
            break;
        case AV_PIX_FMT_YUV422P10LE:
            // v210 means BT.601 to the library; for BT.709 it has 8 bits only.
            if (meaning.IsBt601()) return {Route::V210, eZFCC_v210};
            if (meaning.IsBt709()) return {Route::HdycFrom10, eZFCC_HDYC};
            break;
        default:
            break;
    }
    YuvPlanes planes{};
    if (!PlanesOf(f, planes)) return {Route::Convert, eZFCC_RGB32};
    return {Route::Samples, HandOverFormat(planes, meaning, f.width, f.height)};
}

eZFCC FramePacker::Choose(const AVFrame &frame) {
    m_frame = &frame;
    m_way = WayOf(frame);
    return m_way.fcc;
}

void FramePacker::Store(uint8_t *pixels, const Z_VID_PROPS &props) {
    const AVFrame &f = *m_frame;
    const std::ptrdiff_t step = props.nRowBytes;
    YuvPlanes planes{};
    switch (m_way.route) {
        case Route::Copy:
            return CopyRows(pixels, step);
        case Route::SwapRedBlue:
            return SwapRows(pixels, step);
        case Route::Samples:
            PlanesOf(f, planes);
            return HandOver(planes, MeaningOf(f), f.width, f.height, pixels, props);
        case Route::V210:
            return StoreV210(f, pixels, step);
        case Route::HdycFrom10:
            return StoreHdycFrom10(f, pixels, step);
        case Route::Convert:
            return Convert(pixels, static_cast<int>(step));
    }
}

void FramePacker::Convert(uint8_t *to, int step) {
    const AVFrame &f = *m_frame;
    const AVPixFmtDescriptor *format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(f.format));
    if (f.interlaced_frame == 0 || format == nullptr || format->log2_chroma_h == 0 || f.height < 2) {
        return ConvertPicture(f, AV_PIX_FMT_BGR0, f.width, f.height, to, step, m_scaler);
    }
    // Chroma rows belong to fields, so each field is a picture by itself; its matrix goes by the size of the whole.
    for (int i = 0; i < 2; ++i) {
        const Libav<AVFrame> field(av_frame_alloc());
        if (!field) Fail("out of memory");
        field->format = f.format;
        field->width = f.width;
        field->height = (f.height + 1 - i) / 2;
        field->color_range = f.color_range;
        field->colorspace = f.colorspace;
        if (f.colorspace == AVCOL_SPC_UNSPECIFIED) {
            field->colorspace = MeaningOf(f).kr == kBt709.kr ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
        }
        for (int p = 0; p < 4 && f.data[p] != nullptr; ++p) {
            field->data[p] = f.data[p] + std::ptrdiff_t{i} * f.linesize[p];
            field->linesize[p] = 2 * f.linesize[p];
        }
        ConvertPicture(*field, AV_PIX_FMT_BGR0, f.width, field->height, to + std::ptrdiff_t{i} * step, 2 * step, m_scaler);
    }
}

void FramePacker::CopyRows(uint8_t *to, std::ptrdiff_t step) const {
    const auto row = static_cast<std::size_t>(PipeRowBytes(m_way.fcc, m_frame->width));
    for (int y = 0; y < m_frame->height; ++y) {
        std::memcpy(to + y * step, m_frame->data[0] + std::ptrdiff_t{y} * m_frame->linesize[0], row);
    }
}

void FramePacker::SwapRows(uint8_t *to, std::ptrdiff_t step) const {
    for (int y = 0; y < m_frame->height; ++y) {
        const uint8_t *from = m_frame->data[0] + std::ptrdiff_t{y} * m_frame->linesize[0];
        uint8_t *row = to + y * step;
        for (int x = 0; x < m_frame->width; ++x, row += 3, from += 3) {
            row[0] = from[2];
            row[1] = from[1];
            row[2] = from[0];
        }
    }
}

}    // namespace zkey
