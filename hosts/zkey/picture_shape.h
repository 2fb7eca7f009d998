// The shape of the result: what is cut off, turned, mirrored and brought to another size. The library does the work.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/frame_format.h"
#include "hosts/zkey/padding.h"

namespace zkey {

/// Quarter turns and mirrorings, as a matrix of -1, 0 and 1: x' = a x + c y, y' = b x + d y; y points down.
struct Turn {
    int a = 1;
    int b = 0;
    int c = 0;
    int d = 1;

    bool operator==(const Turn &) const = default;
    /// Whether width and height change places.
    bool Swaps() const { return a == 0; }
};

inline constexpr Turn kTurnRight{0, 1, -1, 0};
inline constexpr Turn kTurnLeft{0, -1, 1, 0};
inline constexpr Turn kTurnAround{-1, 0, 0, -1};
inline constexpr Turn kMirrorHorz{-1, 0, 0, 1};
inline constexpr Turn kMirrorVert{1, 0, 0, -1};

/// Both turns, one after the other.
Turn Then(const Turn &first, const Turn &second);
/// How players turn a clip with this display matrix (nine numbers, 16 bits behind the point; empty: not at all). Nothing where
/// it is no turn by quarters.
std::optional<Turn> TurnOfDisplay(const std::vector<int32_t> &matrix);

/// The size that is asked for. A side of 0 follows from the other one and the picture's shape.
struct SizeWish {
    int32_t width = 0;
    int32_t height = 0;
    double percent = 0;    ///< above 0: of the picture's own size, in place of the two sides

    bool Given() const { return width > 0 || height > 0 || percent > 0; }
};

struct ShapeOptions {
    SizeWish size;
    std::string fit;                ///< a scale type of the library; empty where not given
    std::optional<Borders> crop;    ///< as the picture is seen, before it is turned
    Turn turn;                      ///< rotation and mirroring, in the order in which they were given
    std::optional<int32_t> scaling;
};

/// WxH, W x -, - x H, 720p and the like, 50%. These end the program with a usage line when the text makes no sense.
SizeWish ParseSize(const std::string &text);
std::string ParseFit(const std::string &text);
Turn ParseRotation(const std::string &text);
Turn ParseMirror(const std::string &text);
int32_t ParseScaling(const std::string &text);

/// Width to height.
struct Aspect {
    int16_t x = 1;
    int16_t y = 1;
};

/// What the library is asked for, and what comes out of it.
struct Shape {
    int32_t width = 0;
    int32_t height = 0;
    Rational pixelAspect{1, 1};    ///< of the result
    Aspect source;                 ///< of the whole frame as players show it
    Aspect result;                 ///< of its shape with square pixels
    std::string options;           ///< of the conversion
    bool changes = false;          ///< whether there is anything to do
};

/// `picture` stands at the top left of frames of the size `padded`; players turn it by `display`. Ends the program with a
/// usage line when nothing is left of it.
Shape PlanShape(const ShapeOptions &wish, PictureSize picture, PictureSize padded, Rational pixelAspect, const Turn &display);

}    // namespace zkey
