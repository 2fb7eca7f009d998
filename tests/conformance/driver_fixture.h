// Conversions of frames through the interfaces, each compared with the model: status, description, and every byte.
#pragma once

#include <string>

#include "tests/conformance/dice.h"
#include "tests/conformance/driver_model.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {

// Every format that a factory makes frames of.
const std::vector<eZFCC> &FrameFormats();

// A custom picture of up to 40 pixels both ways, often with padded rows, bottom-up, without aspect, interlaced.
Z_VID_PROPS AnyRecord(Dice &dice, eZFCC fcc);
eZInterlace AnyScan(Dice &dice);

class Driver : public Frames {
protected:
    // A frame with noise or limits for pixels, sometimes a part of a larger one.
    ComPtr<IZFrame> Filled(Dice &dice, const Z_VID_PROPS &p);
    static Still StillOf(const ComPtr<IZFrame> &frame) { return {Props(frame).vidProps, Video(frame).bytes()}; }

    // Converts, and compares with the model. Either source may be null.
    void Check(const ComPtr<IZFrame> &first, const ComPtr<IZFrame> &second, const Z_VID_PROPS &target,
               const ConvertWishes &wishes, Conversion *seen = nullptr);
    void Check(const ComPtr<IZFrame> &source, const Z_VID_PROPS &target, const ConvertWishes &wishes = {}) {
        Check(source, {}, target, wishes);
    }
    static void Compare(const Conversion &expected, HRESULT hr, const ComPtr<IZFrame> &found);
};

}    // namespace conformance
