// Frames with sound beside the model of it, and what their comparison says.
#pragma once

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/conformance/audio_model.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

inline std::string Words(const Z_AUD_PROPS &p) {
    return std::to_string(p.nChannels) + " channels " + std::to_string(p.nSamplesPerSec) + "/s " +
           std::to_string(p.nBitsPerSample) + " bits split " + std::to_string(p.nTrackSplitBits);
}

inline std::string Hex(HRESULT hr) {
    char text[16];
    std::snprintf(text, sizeof text, "%08X", static_cast<uint32_t>(hr));
    return text;
}

// Sound bytes in which rounding and limits show, without numbers that are none.
inline Bytes NoiseFor(Dice &dice, const Z_AUD_PROPS &p, int64_t bytes) {
    Bytes noise = dice.NoiseOrLimits(static_cast<size_t>(bytes));
    if (p.nBitsPerSample < -24 && p.nBitsPerSample >= -32)
        for (size_t i = 0; i + 4 <= noise.size(); i += 4) {
            const int32_t kind = dice(0, 5);
            const float value =
                kind == 0 ? static_cast<float>(dice(-2, 2)) : static_cast<float>(dice(-100000, 100000)) / 65536.0F;
            std::memcpy(&noise[i], &value, 4);
        }
    return noise;
}

// The first byte that differs, or -1. Real numbers that are none may be any of them.
inline int64_t FirstDifference(const Bytes &want, const Bytes &got, bool real) {
    for (size_t i = 0; i < want.size(); ++i) {
        if (want[i] == got[i]) continue;
        const size_t at = i / 4 * 4;
        if (!real || at + 4 > want.size() || !std::isnan(Stored(&want[at], -32)) || !std::isnan(Stored(&got[at], -32)))
            return static_cast<int64_t>(i);
    }
    return -1;
}

// Two levels in dB. What comes from a filter may differ by one unit of the sample type.
inline bool LevelsAgree(float want, float got, bool filtered) {
    if (std::isnan(want) || std::isnan(got)) return std::isnan(want) && std::isnan(got);
    if (want == got || std::abs(want - got) < 2e-4F) return true;
    const auto power = [](float db) { return std::pow(10.0, static_cast<double>(db) / 10.0); };
    return filtered && (std::abs(want - got) < 0.02F || std::abs(power(want) - power(got)) < 3.1e-5);
}

// Empty where both agree.
inline std::string Difference(const char *name, const Z_AUDIO_LOUDNESS &want, const Z_AUDIO_LOUDNESS &got) {
    bool filtered = true;
    for (size_t c = 0; c < 32; ++c) {
        const auto said = [&](const char *what, float a, float b) {
            return std::string(name) + " " + what + " of " + std::to_string(c) + ": " + std::to_string(a) + " is " +
                   std::to_string(b);
        };
        if (!LevelsAgree(want.arrRMS[c], got.arrRMS[c], false)) return said("rms", want.arrRMS[c], got.arrRMS[c]);
        // A filter that an infinite sample went through gives what its form gives.
        filtered = filtered && !std::isnan(want.arrVUMeter[c]) && want.arrVUMeter[c] != INFINITY;
        if (!filtered) continue;
        if (!LevelsAgree(want.arrVUMeter[c], got.arrVUMeter[c], true)) return said("vu", want.arrVUMeter[c], got.arrVUMeter[c]);
        if (!LevelsAgree(want.arrVUPeaks[c], got.arrVUPeaks[c], true))
            return said("peak", want.arrVUPeaks[c], got.arrVUPeaks[c]);
    }
    if (std::memcmp(want.arrEBUMode_M, got.arrEBUMode_M, sizeof want.arrEBUMode_M * 5) != 0)
        return std::string(name) + " host's levels";
    if (want.nValidChannels != got.nValidChannels || want.nValidTracks != got.nValidTracks ||
        want.nTracksSplitBit != got.nTracksSplitBit)
        return std::string(name) + " counts " + std::to_string(want.nValidChannels) + " is " +
               std::to_string(got.nValidChannels);
    return "";
}

// A frame without picture and the model of its sound.
struct Sounding {
    ComPtr<IZFFrame> frame;
    Sound model;

    // Empty where both agree.
    std::string Check() {
        const Z_AV_PROPS props = Props(frame);
        const Z_AUD_PROPS &p = props.audProps;
        if (Words(p) != Words(model.props)) return "record " + Words(model.props) + " is " + Words(p);
        const Bytes sound = Audio(frame).bytes();
        if (sound.size() != model.bytes.size())
            return "bytes " + std::to_string(model.bytes.size()) + " are " + std::to_string(sound.size());
        if (const int64_t i = FirstDifference(model.bytes, sound, p.nBitsPerSample < -24); i >= 0)
            return "byte " + std::to_string(i) + " of " + std::to_string(sound.size());
        model.bytes = sound;
        if (props.ancData.eFlags != model.levels.eFlags) return "flags";
        std::string s = Difference("output", model.levels.audOutput, props.ancData.audOutput);
        if (s.empty()) s = Difference("original", model.levels.audOriginal, props.ancData.audOriginal);
        if (!s.empty()) return s;
        // What only differs in the last places goes on as the library has it.
        model.levels = props.ancData;
        return "";
    }
};

class Sounds : public Frames {
protected:
    Sounding New() {
        ComPtr<IZFrame> frame;
        EXPECT_EQ(m_factory->FrameCreate(0, nullptr, frame.Put()), S_OK);
        return {QueryFor<IZFFrame>(frame.get()), {}};
    }
};

}    // namespace conformance
