// What a conversion between two video records needs, decided from the records alone: the completed target, whether pixels
// change at all, the handling of fields, and how the picture is fitted.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// The target record of a conversion. A record that is not valid takes what it lacks from the source: the pixel format (UYVY
/// if the source has none), scale type, scan, size, aspect and rate. A valid one is only normalised. Packed rows that are too
/// short are lengthened to whole ones.
///
/// `E_POINTER` without record; 0x80040248 for one that cannot be completed, for planes with rows below their width, and for a
/// picture of 2 GB and more. `target` is written only on success.
HRESULT TargetComplete(const Z_VID_PROPS *wanted, const Z_VID_PROPS &source, Z_VID_PROPS &target);

/// HDYC counts as UYVY and RGB32 as ARGB32: their bytes are laid out alike.
eZFCC FormatFamily(eZFCC fcc);

/// The records describe one picture, so that no pixel has to be touched: format by family, size, scan and row bytes are equal,
/// no aspect differs, and either both have the same standard format, or rate, stereo layout and scale type agree.
bool SamePicture(const Z_VID_PROPS &a, const Z_VID_PROPS &b);

/// Which fields of the source a conversion uses.
enum class FieldMode : int32_t {
    kFirst = 0,    ///< the first field in time, stretched to a whole picture
    kBoth = 2,     ///< all rows
};

/// All rows when `field` is 0 or more, when the source is progressive or when the target has fields; otherwise the first field.
FieldMode FieldModeOf(int32_t field, const Z_VID_PROPS &source, const Z_VID_PROPS &target);

/// A conversion or a quarter turn between these complete records writes every byte of the target, so that it need not be
/// cleared before. False where a tail, a gap or a format might leave some, and wherever that is not plain to see.
bool WritesWholeTarget(const Z_VID_PROPS &source, const Z_VID_PROPS &target);

/// Width to height of a single pixel: the display's aspect by the picture's. 0 for a picture without width.
double PixelAspect(const Z_VID_PROPS &props);

/// How the source is fitted into the target when it may be decided: the source's own type or else the target's if one is set.
/// Otherwise high-definition pictures of about one size and of pixels of one shape are not scaled (only if `wholePicture`: a
/// single field never has the lines for it), a source that is narrower than the target and not much higher is cropped, and all
/// else is letter-boxed.
eZScaleType FittingOf(const Z_VID_PROPS &source, const Z_VID_PROPS &target, bool wholePicture);

}    // namespace zck
