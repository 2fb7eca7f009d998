// Image files made byte by byte, without a codec.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zck::test {

using ImageBytes = std::vector<uint8_t>;

inline void PutLittle(std::string &out, uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i) & 0xFF);
}

inline void PutBig(std::string &out, uint64_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) out += static_cast<char>(value >> (8 * i) & 0xFF);
}

inline std::string Chars(const ImageBytes &bytes) { return {bytes.begin(), bytes.end()}; }

// ---- BMP

struct BmpParts {
    uint32_t width = 2;
    int32_t height = 2;
    uint16_t bits = 32;
    uint32_t compression = 0;
    uint32_t imageBytes = 16;
    uint32_t offset = 54;
    uint32_t stated = 0;    ///< size of the file that it states; 0 for the true one
    uint32_t headerBytes = 40;
    uint16_t planes = 1;
    uint32_t coloursUsed = 0;
    std::string pixels = "abcdefghijklmnop";
};

inline std::string BmpBytes(const BmpParts &parts) {
    std::string out = "BM";
    PutLittle(out, parts.stated != 0 ? parts.stated : parts.offset + parts.pixels.size(), 4);
    PutLittle(out, 0, 4);
    PutLittle(out, parts.offset, 4);
    PutLittle(out, parts.headerBytes, 4);
    PutLittle(out, parts.width, 4);
    PutLittle(out, static_cast<uint32_t>(parts.height), 4);
    PutLittle(out, parts.planes, 2);
    PutLittle(out, parts.bits, 2);
    PutLittle(out, parts.compression, 4);
    PutLittle(out, parts.imageBytes, 4);
    PutLittle(out, 0, 8);
    PutLittle(out, parts.coloursUsed, 4);
    PutLittle(out, 0, 4);
    if (parts.offset > out.size() && parts.offset < 4096) out.resize(parts.offset);
    return out + parts.pixels;
}

// ---- PNG, of red, green, blue, alpha, without compression

inline uint32_t PngCrc(std::string_view bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : bytes) {
        crc ^= static_cast<uint8_t>(c);
        for (int i = 0; i < 8; ++i) crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

inline void PutChunk(std::string &out, std::string_view type, const std::string &data) {
    PutBig(out, data.size(), 4);
    const std::string body = std::string(type) + data;
    out += body;
    PutBig(out, PngCrc(body), 4);
}

inline std::string PngBytes(uint32_t width, uint32_t height, const ImageBytes &rgba) {
    std::string rows;
    for (size_t at = 0; at < rgba.size(); ++at) {
        if (at % (size_t{4} * width) == 0) rows += '\0';
        rows += static_cast<char>(rgba[at]);
    }
    uint32_t a = 1;
    uint32_t b = 0;
    for (const char c : rows) {
        a = (a + static_cast<uint8_t>(c)) % 65521;
        b = (b + a) % 65521;
    }
    std::string data = "\x78\x01\x01";    // one stored block, the last; at most 65535 bytes
    PutLittle(data, rows.size(), 2);
    PutLittle(data, ~rows.size(), 2);
    data += rows;
    PutBig(data, b << 16 | a, 4);
    std::string header;
    PutBig(header, width, 4);
    PutBig(header, height, 4);
    header += std::string("\x08\x06\0\0\0", 5);
    std::string out = "\x89PNG\r\n\x1A\n";
    PutChunk(out, "IHDR", header);
    PutChunk(out, "IDAT", data);
    PutChunk(out, "IEND", "");
    return out;
}

// ---- GIF of 128 colours, without compression

struct GifPart {
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t delay = 0;
    uint32_t disposal = 0;
    int transparent = -1;
    bool interlaced = false;
    ImageBytes indices;    ///< below 128
};

inline std::string GifBytes(uint32_t width, uint32_t height, const std::vector<uint32_t> &palette,
                            const std::vector<GifPart> &parts) {
    std::string out = "GIF89a";
    PutLittle(out, width, 2);
    PutLittle(out, height, 2);
    out += std::string("\xF6\0\0", 3);
    for (size_t i = 0; i < 128; ++i) PutBig(out, i < palette.size() ? palette[i] : 0, 3);
    for (const GifPart &part : parts) {
        out += "\x21\xF9\x04";
        PutLittle(out, part.disposal << 2 | (part.transparent >= 0 ? 1U : 0U), 1);
        PutLittle(out, part.delay, 2);
        PutLittle(out, static_cast<uint8_t>(part.transparent), 1);
        out += '\0';
        out += ',';
        for (const uint32_t value : {part.left, part.top, part.width, part.height}) PutLittle(out, value, 2);
        out += part.interlaced ? '\x40' : '\0';
        out += '\x07';    // codes start with 8 bits, and end there when the table is cleared in time
        std::string codes;
        for (size_t i = 0; i < part.indices.size(); ++i) {
            if (i % 100 == 0) codes += '\x80';
            codes += static_cast<char>(part.indices[i]);
        }
        codes += '\x81';
        for (size_t at = 0; at < codes.size(); at += 255) {
            const std::string block = codes.substr(at, 255);
            out += static_cast<char>(block.size());
            out += block;
        }
        out += '\0';
    }
    return out + ';';
}

// ---- TIFF, one strip a page

struct TiffPage {
    uint32_t width = 1;
    uint32_t height = 1;
    int alpha = 0;         ///< 0: none, 1: colour is multiplied by it, 2: it is not
    ImageBytes samples;    ///< red, green, blue and alpha, the top row first
};

inline std::string TiffBytes(const std::vector<TiffPage> &pages, bool ring = false) {
    std::string out = std::string("II*\0", 4);
    size_t link = out.size();
    PutLittle(out, 0, 4);
    const auto linkSet = [&out, &link](size_t place) {
        for (size_t i = 0; i < 4; ++i) out[link + i] = static_cast<char>(place >> (8 * i) & 0xFF);
    };
    for (const TiffPage &page : pages) {
        const uint32_t samples = page.alpha != 0 ? 4 : 3;
        const size_t strip = out.size();
        out += Chars(page.samples);
        if (out.size() % 2 != 0) out += '\0';
        const size_t bits = out.size();
        for (int i = 0; i < 4; ++i) PutLittle(out, 8, 2);
        linkSet(out.size());
        std::vector<std::array<uint64_t, 4>> entries = {
            {256, 4, 1, page.width}, {257, 4, 1, page.height}, {258, 3, samples, bits},
            {259, 3, 1, 1},          {262, 3, 1, 2},           {273, 4, 1, strip},
            {277, 3, 1, samples},    {278, 4, 1, page.height}, {279, 4, 1, page.samples.size()},
            {284, 3, 1, 1}};
        if (page.alpha != 0) entries.push_back({338, 3, 1, static_cast<uint64_t>(page.alpha)});
        PutLittle(out, entries.size(), 2);
        for (const auto &entry : entries) {
            PutLittle(out, entry[0], 2);
            PutLittle(out, entry[1], 2);
            PutLittle(out, entry[2], 4);
            PutLittle(out, entry[3], 4);
        }
        link = out.size();
        PutLittle(out, 0, 4);
    }
    if (ring) linkSet(link - 2 - 12 * (pages.back().alpha != 0 ? 11U : 10U));
    return out;
}

}    // namespace zck::test
