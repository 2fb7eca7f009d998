// Frames laid over frames through the interfaces, each compared with the model: status, every byte of both memories, and what
// stays on the frames.
#pragma once

#include <memory>
#include <string>

#include "tests/conformance/dice.h"
#include "tests/conformance/frame_fixture.h"
#include "tests/conformance/mix_model.h"

namespace conformance {

inline constexpr const char *kConverted = "MIX_CC";
inline constexpr const char *kMask = "MASK8";

// What a call of the wide operation says.
struct WideCall {
    int32_t x = 0, y = 0;
    double opacity = 1.0;
    int32_t flags = 0;
    const char *props = nullptr;
};

class Mix : public Frames {
protected:
    // A frame with noise or limits for pixels and any alpha. `cut` makes it a part of a larger one, which is kept as
    // `m_around`.
    ComPtr<IZFrame> Filled(Dice &dice, const Z_VID_PROPS &p, bool cut = false);
    // A frame of these bytes.
    ComPtr<IZFrame> Of(const Z_VID_PROPS &p, const Bytes &bytes);
    static Still StillOf(const ComPtr<IZFrame> &frame) { return {Props(frame).vidProps, Video(frame).bytes()}; }
    // Sets pixels of a frame.
    static void Refill(const ComPtr<IZFrame> &frame, const Bytes &bytes);

    // What is attached to a frame under a name; null when there is none, or no frame.
    static std::unique_ptr<Still> Stored(const ComPtr<IZFrame> &frame, const char *name);
    static void Store(const ComPtr<IZFrame> &frame, const char *name, const ComPtr<IZFrame> &object);

    // Lay one frame over another, and compare. A part that is cut is held against all of its memory.
    void Lay(const ComPtr<IZFrame> &target, const ComPtr<IZFrame> &over, int32_t x, int32_t y, double opacity,
             Laid *seen = nullptr);
    void LayWide(const ComPtr<IZFrame> &target, const ComPtr<IZFrame> &over, const ComPtr<IZFrame> &mask, const WideCall &call,
                 Laid *seen = nullptr);

    // A frame of noise.
    ComPtr<IZFrame> Any(eZFCC fcc, int32_t width = 8, int32_t height = 4) {
        return Make(Picture(fcc, width, height), ++m_seed);
    }
    static ComPtr<IZFrame> WithoutPicture(const ComPtr<IZFrame> &frame);
    static void Describe(const ComPtr<IZFrame> &frame, const Z_VID_PROPS &p);
    // The calls alone.
    static HRESULT Overlay(const ComPtr<IZFrame> &target, IZFrame *over, int32_t x = 0, int32_t y = 0) {
        return target->FrameOverlay(over, x, y, 1.0, nullptr);
    }
    static HRESULT Wide(const ComPtr<IZFrame> &target, const ComPtr<IZFrame> &over, const char *props = nullptr,
                        const ComPtr<IZFrame> &mask = {}, int32_t x = 0);
    static int32_t Objects(const ComPtr<IZFrame> &frame);

    ComPtr<IZFrame> m_around;    // of the last part
    uint32_t m_seed = 0;
};

// A small picture, often with padded rows, bottom-up, interlaced, without aspect.
Z_VID_PROPS SmallRecord(Dice &dice, eZFCC fcc);
// Every format that frames are made of.
const std::vector<eZFCC> &MixFormats();
double AnyOpacity(Dice &dice);
// From wholly outside on one side to wholly outside on the other, mostly between.
int32_t AnyPlace(Dice &dice, int32_t size, int32_t over);

}    // namespace conformance
