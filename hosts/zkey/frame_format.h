// The pixel formats of frames without a header, and the description of a frame for the library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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
    /// The format in which the frame is handed to the library: the same bytes, or a conversion by this program.
    eZFCC handed;
    const char *help;
};

const NamedFormat *FormatByName(std::string_view name);
/// Ends at an entry without a name.
const NamedFormat *FormatTable();

/// A description of headerless frames: FORMAT:WxH[@RATE][:top|bottom|progressive].
struct RawSpec {
    eZFCC fcc = eZFCC_Default;
    int32_t width = 0;
    int32_t height = 0;
    Rational rate{25, 1};
    eZInterlace scan = eZI_Progressive;
};

/// Ends the program with a usage line when the text is malformed.
RawSpec ParseRawSpec(const std::string &text);
/// "25", "29.97" (which means 30000/1001) or "30000/1001".
std::optional<Rational> ParseRate(std::string_view text);

/// Bytes of a row as the library lays them out: padded to 4 bytes, v210 in blocks of 128.
int32_t LibraryRowBytes(eZFCC fcc, int32_t width);
/// Bytes of a row in a pipe: without padding, save that 4:2:2 has whole pairs and v210 whole blocks of 128.
int32_t PipeRowBytes(eZFCC fcc, int32_t width);
/// Bytes of a whole frame in a pipe, planar formats with all their planes.
int64_t PipeFrameBytes(eZFCC fcc, int32_t width, int32_t height);

/// A complete description of a frame. The RGB family runs top-down.
Z_VID_PROPS DescribeFrame(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan, double rate);
/// Bytes of the pixels that a description from `DescribeFrame` states.
int64_t FrameBytes(const Z_VID_PROPS &props);

bool IsRgb(eZFCC fcc);
bool IsInterlaced(eZInterlace scan);

}    // namespace zkey
