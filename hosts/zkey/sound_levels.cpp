#include "hosts/zkey/sound_levels.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "hosts/zkey/frame_sound.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr int32_t kMetered = 32;

/// Samples of up to 16 bits lie in 16 bits in a channel of the library, all others as 32-bit float.
double LargestSample(IZFFrame *frame, int32_t channel, bool isShort) {
    int32_t bytes = 0;
    int64_t address = 0;
    if (FAILED(frame->ZFAudioChannelGet(channel, 0, &bytes, &address)) || address == 0) return 0;
    double largest = 0;
    const auto take = [&](auto sample, double fullScale) {
        const auto *samples = reinterpret_cast<const decltype(sample) *>(static_cast<intptr_t>(address));
        const std::ptrdiff_t count = bytes / static_cast<int32_t>(sizeof sample);
        for (std::ptrdiff_t i = 0; i < count; ++i) largest = std::max(largest, std::fabs(samples[i] / fullScale));
    };
    if (isShort) {
        take(int16_t{}, 32768.0);
    } else {
        take(float{}, 1.0);
    }
    return largest;
}

std::string Number(const char *format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string Decibels(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    return Number("%.2f", value);
}

std::string JsonNumber(double value) { return std::isfinite(value) ? Number("%.4f", value) : "null"; }

std::string Column(std::string text) {
    constexpr std::size_t kWidth = 12;
    if (text.size() < kWidth) text.insert(0, kWidth - text.size(), ' ');
    return text;
}

double Seconds(const SoundLevels &levels) { return double{1} * levels.samples / levels.props.nSamplesPerSec; }

std::string Plural(int32_t count, const char *word) { return std::to_string(count) + " " + word + (count == 1 ? "" : "s"); }

}    // namespace

SoundLevels LevelsOf(IZFrame *frame) {
    SoundLevels levels;
    const Ref<IZFFrame> wide = WideView<IZFFrame>(frame);
    Z_AV_PROPS all{};
    if (FAILED(wide->ZFAVPropsGet(&all, &levels.samples))) Fail("cannot read the levels of a frame");
    levels.props = all.audProps;
    const int32_t bits = levels.props.nBitsPerSample;
    if (std::abs(bits) < kShortestSample) return levels;
    const Z_AUDIO_LOUDNESS &l = all.ancData.audOutput;
    for (int32_t i = 0; i < levels.props.nChannels; ++i) {
        ChannelLevels c;
        c.peak = 20 * std::log10(LargestSample(wide.get(), i, bits > 0 && bits <= 16));
        if (i < std::min(l.nValidChannels, kMetered)) c.metered = {{l.arrRMS[i], l.arrVUMeter[i], l.arrVUPeaks[i]}};
        levels.channels.push_back(c);
    }
    return levels;
}

std::string LevelsTable(const std::string &name, const SoundLevels &levels) {
    const Z_AUD_PROPS &p = levels.props;
    std::string out = name + ": " + Plural(p.nChannels, "channel") + ", " + std::to_string(p.nSamplesPerSec) + " Hz, " +
                      std::to_string(std::abs(p.nBitsPerSample)) + " bits" + (p.nBitsPerSample < 0 ? " float" : "") + ", " +
                      Plural(levels.samples, "sample") + ", " + Number("%.6g", Seconds(levels)) + " s\n";
    if (levels.channels.empty()) return out + "the library measures no samples of this width\n";
    out += " channel" + Column("peak dB") + Column("rms dB") + Column("vu dB") + Column("vu peak dB") + "\n";
    for (std::size_t i = 0; i < levels.channels.size(); ++i) {
        const ChannelLevels &c = levels.channels[i];
        const std::string number = std::to_string(i);
        out += std::string(8 - std::min<std::size_t>(8, number.size()), ' ') + number + Column(Decibels(c.peak));
        for (const double ChannelLevels::Metered::*value :
             {&ChannelLevels::Metered::rms, &ChannelLevels::Metered::vu, &ChannelLevels::Metered::vuPeak}) {
            out += Column(c.metered ? Decibels((*c.metered).*value) : "-");
        }
        out += "\n";
    }
    return out;
}

std::string LevelsJson(const std::string &name, const SoundLevels &levels) {
    const Z_AUD_PROPS &p = levels.props;
    std::string out = "{\"input\":" + JsonText(name) + ",\"channels\":" + std::to_string(p.nChannels) +
                      ",\"rate\":" + std::to_string(p.nSamplesPerSec) +
                      ",\"bits\":" + std::to_string(std::abs(p.nBitsPerSample)) +
                      ",\"float\":" + (p.nBitsPerSample < 0 ? "true" : "false") +
                      ",\"samples\":" + std::to_string(levels.samples) + ",\"levels\":[";
    for (std::size_t i = 0; i < levels.channels.size(); ++i) {
        const ChannelLevels &c = levels.channels[i];
        constexpr double kNone = NAN;
        out += std::string(i == 0 ? "" : ",") + "{\"channel\":" + std::to_string(i) + ",\"peak\":" + JsonNumber(c.peak) +
               ",\"rms\":" + JsonNumber(c.metered ? c.metered->rms : kNone) +
               ",\"vu\":" + JsonNumber(c.metered ? c.metered->vu : kNone) +
               ",\"vu_peak\":" + JsonNumber(c.metered ? c.metered->vuPeak : kNone) + "}";
    }
    return out + "]}\n";
}

}    // namespace zkey
