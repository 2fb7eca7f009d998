#include "hosts/zkey/padding.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "hosts/zkey/text.h"

namespace zkey {
namespace {

int32_t RoundUp(int32_t value, int32_t step) { return (value + step - 1) / step * step; }

void RepeatPixel(uint8_t *row, int32_t bytes, int32_t from, int32_t to) {
    const uint8_t *last = row + std::ptrdiff_t{from - 1} * bytes;
    for (int32_t x = from; x < to; ++x) std::memcpy(row + std::ptrdiff_t{x} * bytes, last, static_cast<std::size_t>(bytes));
}

/// Packed 4:2:2 of 8 bits; `luma` is the byte of the first luma sample in a pair of pixels.
void RepeatPair(uint8_t *row, int luma, int32_t from, int32_t to) {
    uint8_t *last = row + std::ptrdiff_t{(from - 1) / 2} * 4;
    if (from % 2 != 0) last[luma + 2] = last[luma];
    const uint8_t edge = last[luma + 2];
    for (uint8_t *pair = last + 4; pair < row + std::ptrdiff_t{to} * 2; pair += 4) {
        std::memcpy(pair, last, 4);
        pair[luma] = edge;
        pair[luma + 2] = edge;
    }
}

uint32_t SampleGet(const uint8_t *row, int32_t index) {
    uint32_t word = 0;
    std::memcpy(&word, row + std::ptrdiff_t{index / 3} * 4, 4);
    return (word >> (10 * (index % 3))) & 0x3FF;
}

void SamplePut(uint8_t *row, int32_t index, uint32_t value) {
    uint32_t word = 0;
    std::memcpy(&word, row + std::ptrdiff_t{index / 3} * 4, 4);
    const int shift = 10 * (index % 3);
    word = (word & ~(0x3FFU << shift)) | (value << shift);
    std::memcpy(row + std::ptrdiff_t{index / 3} * 4, &word, 4);
}

/// v210: the samples of a pair of pixels are Cb, Y, Cr, Y, three to a word of 32 bits.
void RepeatV210(uint8_t *row, int32_t from, int32_t to) {
    const int32_t last = (from - 1) / 2 * 4;
    const uint32_t cb = SampleGet(row, last);
    const uint32_t cr = SampleGet(row, last + 2);
    const uint32_t edge = SampleGet(row, from % 2 != 0 ? last + 1 : last + 3);
    SamplePut(row, last + 3, edge);
    for (int32_t at = last + 4; at < to * 2; at += 4) {
        SamplePut(row, at, cb);
        SamplePut(row, at + 1, edge);
        SamplePut(row, at + 2, cr);
        SamplePut(row, at + 3, edge);
    }
}

void RepeatColumn(uint8_t *row, eZFCC fcc, int32_t from, int32_t to) {
    switch (fcc) {
        case eZFCC_RGB24:
            return RepeatPixel(row, 3, from, to);
        case eZFCC_RGB32:
        case eZFCC_ARGB32:
            return RepeatPixel(row, 4, from, to);
        case eZFCC_YUY2:
            return RepeatPair(row, 0, from, to);
        case eZFCC_v210:
            return RepeatV210(row, from, to);
        default:
            return RepeatPair(row, 1, from, to);
    }
}

/// One image of rows with samples or pixels of `bytes` bytes.
void RepeatPlane(uint8_t *plane, std::ptrdiff_t step, int32_t bytes, PictureSize inner, PictureSize outer) {
    for (int32_t y = 0; y < inner.height; ++y) RepeatPixel(plane + y * step, bytes, inner.width, outer.width);
    for (int32_t y = inner.height; y < outer.height; ++y) {
        std::memcpy(plane + y * step, plane + (y - 1) * step,
                    static_cast<std::size_t>(outer.width) * static_cast<std::size_t>(bytes));
    }
}

void RepeatPlanes(uint8_t *pixels, const Z_VID_PROPS &props, int32_t width, int32_t height) {
    const PlanarFrame f = PlanesOfFrame(pixels, props);
    const PictureSize inner{width / 2, height / 2};
    const PictureSize outer{props.nWidth / 2, props.nHeight / 2};
    RepeatPlane(f.y, f.lumaRow, 1, {width, height}, {props.nWidth, props.nHeight});
    RepeatPlane(std::min(f.cb, f.cr), f.chromaRow, f.chromaStep, inner, outer);
    if (f.chromaStep == 1) RepeatPlane(std::max(f.cb, f.cr), f.chromaRow, 1, inner, outer);
}

/// Where an inside that starts at `from` ends: at `to` less the border, in whole steps.
int32_t InsideEnd(int32_t from, int32_t to, int32_t border, int32_t step) {
    const int32_t length = std::max(to - border - from, 1);
    return from + (border > 0 ? std::max(length / step, 1) * step : RoundUp(length, step));
}

}    // namespace

std::vector<std::string_view> BorderWords(std::string_view text) {
    constexpr const char *kSeparators = " ,;\t\r\n";
    std::vector<std::string_view> words;
    for (std::size_t at = 0; (at = text.find_first_not_of(kSeparators, at)) != text.npos;) {
        const std::size_t end = std::min(text.find_first_of(kSeparators, at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

std::optional<Borders> BordersFromText(const std::string &text) {
    const std::vector<std::string_view> words = BorderWords(text);
    const std::size_t count = std::min<std::size_t>(words.size(), 4);
    int32_t n[4] = {};
    for (std::size_t i = 0; i < count; ++i) ParseWhole(words[i], n[i]);
    if (std::all_of(n, n + 4, [](int32_t v) { return v == 0; })) return std::nullopt;
    if (count == 1) return Borders{n[0], n[0], n[0], n[0]};
    if (count == 2) return Borders{n[0], n[1], n[0], n[1]};
    if (count == 3) return Borders{n[0], n[1], n[0], n[2]};
    return Borders{n[0], n[1], n[2], n[3]};
}

Borders PaddedBorders(const Borders &asked, PictureSize picture, int32_t threads, bool interlaced, PictureSize &padded) {
    const int32_t rows = std::clamp(threads, 1, 16) * (interlaced ? 2 : 1);
    const int32_t left = RoundUp(std::min(asked.left, picture.width - 1), 8);
    const int32_t top = RoundUp(std::min(asked.top, picture.height - 1), interlaced ? 2 : 1);
    const int32_t right = InsideEnd(left, picture.width, asked.right, 16);
    const int32_t bottom = InsideEnd(top, picture.height, asked.bottom, rows);
    padded = {std::max(padded.width, RoundUp(right, 16)), std::max(padded.height, RoundUp(bottom, 2 * rows))};
    return {left, top, padded.width - right, padded.height - bottom};
}

PictureSize PaddedSize(int32_t width, int32_t height, int32_t threads, bool interlaced, eZFCC fcc) {
    int32_t rows = std::clamp(threads, 1, 16) * (interlaced ? 2 : 1);
    if (IsPlanar(fcc) && rows % 2 != 0) rows *= 2;
    return {RoundUp(width, 16), RoundUp(height, rows)};
}

void RepeatEdges(uint8_t *pixels, const Z_VID_PROPS &props, int32_t width, int32_t height) {
    if (IsPlanar(props.fccType)) return RepeatPlanes(pixels, props, width, height);
    const std::ptrdiff_t step = props.nRowBytes;
    if (width < props.nWidth) {
        for (int32_t y = 0; y < height; ++y) RepeatColumn(pixels + y * step, props.fccType, width, props.nWidth);
    }
    const int32_t back = IsInterlaced(props.eInterlace) && height > 1 ? 2 : 1;
    for (int32_t y = height; y < std::abs(props.nHeight); ++y) {
        std::memcpy(pixels + y * step, pixels + (y - back) * step, static_cast<std::size_t>(step));
    }
}

}    // namespace zkey
