// The pixel formats of frames without a header, and the description of a frame for the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/zkey/yuv_planes.h"
#include "zchromakey/media_types.h"

namespace zkey {

struct Rational {
    int32_t num = 0;
    int32_t den = 1;
    double Value() const { return den != 0 ? static_cast<double>(num) / den : 0.0; }
};

/// A format that can be given by name.
struct NamedFormat {
    const char *name;
    eZFCC fcc;
    const char *help;
};

const NamedFormat *FormatByName(std::string_view name);
/// Ends at an entry without a name.
const NamedFormat *FormatTable();

/// A description of headerless frames: FORMAT:WxH[@RATE], then words, each after a colon: top, bottom, progressive; and for
/// luma and chroma 601, 709 and full.
struct RawSpec {
    eZFCC fcc = eZFCC_Default;
    int32_t width = 0;
    int32_t height = 0;
    Rational rate{25, 1};
    eZInterlace scan = eZI_Progressive;
    std::optional<YuvMeaning> matrix;    ///< not given: what the format's name says, or else the size
    bool fullRange = false;

    /// What the samples mean; of no use for the RGB family.
    YuvMeaning Meaning() const;
};

/// Ends the program with a usage line when the text is malformed.
RawSpec ParseRawSpec(const std::string &text);
/// Ends the program with a line about `name` when no frame of this size can be keyed: at 4 bytes a pixel it has 2 GB at most.
void RequireFits(const std::string &name, int32_t width, int32_t height);
/// "25", "29.97" (which means 30000/1001) or "30000/1001".
std::optional<Rational> ParseRate(std::string_view text);

/// Bytes of a row as the library lays them out: padded to 4 bytes, v210 in blocks of 128; of planes the luma row.
int32_t LibraryRowBytes(eZFCC fcc, int32_t width);
/// Bytes of a row in a pipe: without padding, save that 4:2:2 has whole pairs and v210 whole blocks of 128.
int32_t PipeRowBytes(eZFCC fcc, int32_t width);
/// Bytes of a whole frame in a pipe, planar formats with all their planes.
int64_t PipeFrameBytes(eZFCC fcc, int32_t width, int32_t height);

/// A complete description of a frame. The RGB family runs top-down.
Z_VID_PROPS DescribeFrame(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan, double rate);
/// Bytes of the pixels that a description from `DescribeFrame` states.
int64_t FrameBytes(const Z_VID_PROPS &props);

/// The planes of a 4:2:0 frame as the library lays them out. Its height is even.
struct PlanarFrame {
    uint8_t *y;
    uint8_t *cb;
    uint8_t *cr;
    std::ptrdiff_t lumaRow;    ///< bytes from row to row
    std::ptrdiff_t chromaRow;
    int chromaStep;    ///< bytes from sample to sample
};
PlanarFrame PlanesOfFrame(uint8_t *pixels, const Z_VID_PROPS &props);

/// I420, YV12 and NV12.
bool IsPlanar(eZFCC fcc);

bool IsRgb(eZFCC fcc);
bool IsInterlaced(eZInterlace scan);

}    // namespace zkey
