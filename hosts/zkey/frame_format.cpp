#include "hosts/zkey/frame_format.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr std::array<NamedFormat, 12> kFormats = {{
    {"RGB24", eZFCC_RGB24, "blue, green, red"},
    {"RGB32", eZFCC_RGB32, "blue, green, red, unused"},
    {"ARGB32", eZFCC_ARGB32, "blue, green, red, alpha"},
    {"UYVY", eZFCC_UYVY, "4:2:2, BT.601: Cb Y Cr Y"},
    {"HDYC", eZFCC_HDYC, "4:2:2, BT.709: Cb Y Cr Y"},
    {"YUY2", eZFCC_YUY2, "4:2:2, BT.601: Y Cb Y Cr"},
    {"YVYU", eZFCC_YVYU, "4:2:2, BT.601: Y Cr Y Cb"},
    {"v210", eZFCC_v210, "4:2:2, matrix by size, 10 bits in blocks of 128 bytes"},
    {"I420", eZFCC_I420, "4:2:0, matrix by size: planes Y, Cb, Cr"},
    {"YV12", eZFCC_YV12, "4:2:0, matrix by size: planes Y, Cr, Cb"},
    {"NV12", eZFCC_NV12, "4:2:0, matrix by size: planes Y, Cb and Cr in turn"},
    {nullptr, eZFCC_Default, nullptr},
}};

int64_t PipeRow64(eZFCC fcc, int64_t width) {
    switch (fcc) {
        case eZFCC_RGB24:
            return width * 3;
        case eZFCC_RGB32:
        case eZFCC_ARGB32:
            return width * 4;
        case eZFCC_v210:
            return (width + 47) / 48 * 128;
        case eZFCC_I420:
        case eZFCC_YV12:
        case eZFCC_NV12:
            return width;
        default:
            return (width + 1) / 2 * 4;
    }
}

std::string FormatNames() {
    std::string out;
    for (const NamedFormat *f = kFormats.data(); f->name != nullptr; ++f)
        out += (out.empty() ? "" : ", ") + std::string(f->name);
    return out;
}

bool Fits(int32_t width, int32_t height) { return int64_t{width} * height * 4 <= INT32_MAX; }

[[noreturn]] void BadSpec(const std::string &text, const std::string &why) {
    FailUsage("--raw " + text + ": " + why + " (FORMAT:WxH[@RATE][:WORD...], such as UYVY:720x576@25:top)");
}

int32_t ParseSide(const std::string &spec, std::string_view text) {
    int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        BadSpec(spec, "\"" + std::string(text) + "\" is no size");
    }
    if (value < 1) BadSpec(spec, "the size is too small");
    if (value > 32768) BadSpec(spec, "the size is too large");
    return value;
}

void TakeWord(const std::string &text, std::string_view word, RawSpec &spec) {
    if (SameWord(word, "top")) {
        spec.scan = eZI_Field1First;
    } else if (SameWord(word, "bottom")) {
        spec.scan = eZI_Field2First;
    } else if (SameWord(word, "progressive")) {
        spec.scan = eZI_Progressive;
    } else if (IsRgb(spec.fcc)) {
        BadSpec(text, "\"" + std::string(word) + "\" is none of top, bottom, progressive");
    } else if (SameWord(word, "601")) {
        spec.matrix = kBt601;
    } else if (SameWord(word, "709")) {
        spec.matrix = kBt709;
    } else if (SameWord(word, "full")) {
        spec.fullRange = true;
    } else {
        BadSpec(text, "\"" + std::string(word) + "\" is none of top, bottom, progressive, 601, 709, full");
    }
}

/// What the name of a format says about its matrix, or else the size of the picture.
YuvMeaning NaturalMeaning(const RawSpec &spec) {
    switch (spec.fcc) {
        case eZFCC_UYVY:
        case eZFCC_YUY2:
        case eZFCC_YVYU:
            return kBt601;
        case eZFCC_HDYC:
            return kBt709;
        default:
            return MeaningBySize(spec.width, spec.height);
    }
}

}    // namespace

const NamedFormat *FormatTable() { return kFormats.data(); }

const NamedFormat *FormatByName(std::string_view name) {
    for (const NamedFormat &f : kFormats) {
        if (f.name != nullptr && SameWord(f.name, name)) return &f;
    }
    return nullptr;
}

std::optional<Rational> ParseRate(std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash != std::string_view::npos) {
        int32_t num = 0;
        int32_t den = 0;
        if (!ParseWhole(text.substr(0, slash), num) || !ParseWhole(text.substr(slash + 1), den) || num < 1 || den < 1)
            return {};
        return Rational{num, den};
    }
    double value = 0;
    if (!ParseReal(text, value) || value < 0.01 || value > 100000) return {};
    const double whole = std::round(value);
    if (std::fabs(value - whole) < 1e-9) return Rational{static_cast<int32_t>(whole), 1};
    // 23.976, 29.97, 59.94 and their kin stand for whole rates slowed down by 1001/1000.
    const double drop = std::round(value * 1.001);
    if (std::fabs(value * 1.001 - drop) < 0.005) return Rational{static_cast<int32_t>(drop) * 1000, 1001};
    return Rational{static_cast<int32_t>(std::lround(value * 1000)), 1000};
}

RawSpec ParseRawSpec(const std::string &text) {
    RawSpec spec;
    const std::size_t colon = text.find(':');
    const NamedFormat *format = FormatByName(std::string_view(text).substr(0, colon));
    if (format == nullptr) BadSpec(text, "the format \"" + text.substr(0, colon) + "\" is none of " + FormatNames());
    if (colon == std::string::npos) BadSpec(text, "the size is missing");
    spec.fcc = format->fcc;

    std::string size = text.substr(colon + 1);
    while (size.find(':') != std::string::npos) {
        const std::size_t word = size.rfind(':');
        TakeWord(text, std::string_view(size).substr(word + 1), spec);
        size.resize(word);
    }
    if (const std::size_t at = size.find('@'); at != std::string::npos) {
        const std::optional<Rational> rate = ParseRate(std::string_view(size).substr(at + 1));
        if (!rate) BadSpec(text, "\"" + size.substr(at + 1) + "\" is no rate");
        spec.rate = *rate;
        size.resize(at);
    }
    const std::size_t cross = size.find_first_of("xX");
    if (cross == std::string::npos) BadSpec(text, "\"" + size + "\" is no size");
    spec.width = ParseSide(text, std::string_view(size).substr(0, cross));
    spec.height = ParseSide(text, std::string_view(size).substr(cross + 1));
    if (!Fits(spec.width, spec.height)) BadSpec(text, "the size is too large");
    return spec;
}

void RequireFits(const std::string &name, int32_t width, int32_t height) {
    if (Fits(width, height)) return;
    Fail(name + ": the size " + std::to_string(width) + "x" + std::to_string(height) +
         " is too large, a frame has 2 GB at most");
}

int32_t PipeRowBytes(eZFCC fcc, int32_t width) { return static_cast<int32_t>(PipeRow64(fcc, width)); }

int64_t PipeFrameBytes(eZFCC fcc, int32_t width, int32_t height) {
    if (!IsPlanar(fcc)) return PipeRow64(fcc, width) * height;
    const int64_t chroma = int64_t{(width + 1) / 2} * ((height + 1) / 2);
    return int64_t{width} * height + 2 * chroma;
}

int32_t LibraryRowBytes(eZFCC fcc, int32_t width) { return (PipeRowBytes(fcc, width) + 3) & ~3; }

Z_VID_PROPS DescribeFrame(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan, double rate) {
    Z_VID_PROPS props{};
    props.eVideoFormat = eZVF_Custom;
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = IsRgb(fcc) ? -height : height;
    props.nRowBytes = LibraryRowBytes(fcc, width);
    props.eInterlace = scan;
    props.dblRate = rate;
    return props;
}

int64_t FrameBytes(const Z_VID_PROPS &props) {
    const int64_t rows = std::abs(props.nHeight);
    return int64_t{props.nRowBytes} * (IsPlanar(props.fccType) ? rows + rows / 2 : rows);
}

PlanarFrame PlanesOfFrame(uint8_t *pixels, const Z_VID_PROPS &props) {
    const std::ptrdiff_t row = props.nRowBytes;
    const std::ptrdiff_t rows = std::abs(props.nHeight);
    PlanarFrame f{pixels, pixels + row * rows, nullptr, row, row, 2};
    f.cr = f.cb + 1;
    if (props.fccType == eZFCC_NV12) return f;
    f.chromaRow = row / 2;
    f.chromaStep = 1;
    f.cr = f.cb + f.chromaRow * (rows / 2);
    if (props.fccType == eZFCC_YV12) std::swap(f.cb, f.cr);
    return f;
}

YuvMeaning RawSpec::Meaning() const {
    YuvMeaning m = matrix.value_or(NaturalMeaning(*this));
    m.fullRange = fullRange;
    return m;
}

bool IsPlanar(eZFCC fcc) { return fcc == eZFCC_I420 || fcc == eZFCC_YV12 || fcc == eZFCC_NV12; }

bool IsRgb(eZFCC fcc) { return fcc == eZFCC_RGB24 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32; }

bool IsInterlaced(eZInterlace scan) { return scan == eZI_Field1First || scan == eZI_Field2First; }

}    // namespace zkey
