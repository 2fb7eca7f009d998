#include "platform/codec_facts.h"

#include <cstdlib>

namespace zck {
namespace {

/// Numbers at places of a file; 0 behind its end.
class Numbers {
public:
    Numbers(std::string_view file, bool bigEndian) : m_file(file), m_big(bigEndian) {}

    uint8_t Byte(size_t at) const { return at < m_file.size() ? static_cast<uint8_t>(m_file[at]) : uint8_t{0}; }
    uint32_t Word(size_t at) const {
        const uint32_t first = Byte(at);
        const uint32_t second = Byte(at + 1);
        return m_big ? first << 8 | second : second << 8 | first;
    }
    uint32_t Long(size_t at) const {
        const uint32_t first = Word(at);
        const uint32_t second = Word(at + 2);
        return m_big ? first << 16 | second : second << 16 | first;
    }
    size_t Size() const { return m_file.size(); }

private:
    std::string_view m_file;
    bool m_big;
};

CodecFacts PngFacts(std::string_view file) {
    const Numbers at(file, true);
    return {CodecKind::Png, at.Long(16), at.Long(20), 1};
}

CodecFacts BmpFacts(std::string_view file) {
    const Numbers at(file, false);
    if (at.Long(14) == 12) return {CodecKind::Bmp, at.Word(18), at.Word(20), 1};
    return {CodecKind::Bmp, static_cast<int32_t>(at.Long(18)), std::abs(int64_t{static_cast<int32_t>(at.Long(22))}), 1};
}

/// The size stands in the header of the first frame, behind segments of any number.
CodecFacts JpegFacts(std::string_view file) {
    const Numbers at(file, true);
    CodecFacts facts{CodecKind::Jpeg, 0, 0, 1};
    for (size_t place = 2; place + 9 <= at.Size();) {
        if (at.Byte(place) != 0xFF) return facts;
        const uint8_t marker = at.Byte(place + 1);
        const bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame) {
            facts.height = at.Word(place + 5);
            facts.width = at.Word(place + 7);
            return facts;
        }
        const bool bare = marker == 0xFF || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
        place += marker == 0xFF ? 1 : bare ? 2 : 2 + at.Word(place + 2);
    }
    return facts;
}

size_t BehindBlocks(const Numbers &at, size_t place) {
    while (place < at.Size() && at.Byte(place) != 0) place += 1 + at.Byte(place);
    return place + 1;
}

size_t GifMapBytes(uint8_t flags) { return (flags & 0x80) != 0 ? size_t{6} << (flags & 7) : 0; }

CodecFacts GifFacts(std::string_view file) {
    const Numbers at(file, false);
    CodecFacts facts{CodecKind::Gif, at.Word(6), at.Word(8), 0};
    size_t place = 13 + GifMapBytes(at.Byte(10));
    while (place < at.Size() && facts.pictures < kPicturesCounted) {
        const uint8_t kind = at.Byte(place);
        if (kind == 0x21) {
            place = BehindBlocks(at, place + 2);
        } else if (kind == 0x2C) {
            ++facts.pictures;
            place = BehindBlocks(at, place + 11 + GifMapBytes(at.Byte(place + 9)));
        } else {
            break;
        }
    }
    return facts;
}

/// Directories that form a ring are counted without end, hence the bound.
CodecFacts TiffFacts(std::string_view file) {
    const Numbers at(file, file[0] == 'M');
    CodecFacts facts{CodecKind::Tiff};
    if (at.Word(2) != 42) return facts;
    size_t place = at.Long(4);
    while (place != 0 && place + 2 <= at.Size() && facts.pictures < kPicturesCounted) {
        const size_t entries = at.Word(place);
        for (size_t i = 0; i < entries && facts.pictures == 0; ++i) {
            const size_t entry = place + 2 + 12 * i;
            const int64_t value = at.Word(entry + 2) == 3 ? at.Word(entry + 8) : at.Long(entry + 8);
            if (at.Word(entry) == 256) facts.width = value;
            if (at.Word(entry) == 257) facts.height = value;
        }
        ++facts.pictures;
        place = at.Long(place + 2 + 12 * entries);
    }
    return facts;
}

}    // namespace

std::optional<CodecFacts> CodecFactsOf(std::string_view file) noexcept {
    using namespace std::string_view_literals;
    if (file.starts_with("\x89PNG\r\n\x1A\n"sv)) return PngFacts(file);
    if (file.starts_with("\xFF\xD8\xFF"sv)) return JpegFacts(file);
    if (file.starts_with("GIF8"sv)) return GifFacts(file);
    for (const std::string_view mark : {"II\x2A\0"sv, "MM\0\x2A"sv, "II\x2B\0"sv, "MM\0\x2B"sv}) {
        if (file.starts_with(mark)) return TiffFacts(file);
    }
    if (file.starts_with("BM"sv)) return BmpFacts(file);
    return std::nullopt;
}

HRESULT CodecFactsAsk(const CodecFacts &facts, CodecSink &sink) {
    // Pages of a TIFF have sizes of their own.
    if (facts.kind != CodecKind::Tiff) return sink.Expect(facts.pictures, facts.width, facts.height);
    const HRESULT hr = sink.Expect(facts.pictures, 0, 0);
    return FAILED(hr) ? hr : sink.Expect(1, facts.width, facts.height);
}

}    // namespace zck
