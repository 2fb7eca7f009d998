#include "hosts/zkey/key_words.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "hosts/zkey/colours.h"
#include "hosts/zkey/key_options.h"

namespace zkey {
namespace {

uint32_t Rgb(double red, double green, double blue) {
    const auto byte = [](double v) { return static_cast<uint32_t>(std::lround(std::clamp(v, 0.0, 255.0))); };
    return byte(red) << 16 | byte(green) << 8 | byte(blue);
}

/// A colour near the centre of an entry; `nValue` tells the rest.
uint32_t ColourNear(eCK_Type type, int32_t value) {
    const double a = value & 255;
    const double b = value >> 8 & 255;
    const double c = value >> 16 & 255;
    if (type == eCKT_RGB) return Rgb(a, b, c);
    // Of the exchanged space: blue first.
    if (type == eCKT_YUV) {
        const double u = (b - 128) * 2.032;
        const double v = (c - 128) * 1.14;
        return Rgb(a + u, (a - 0.299 * (a + v) - 0.114 * (a + u)) / 0.587, a + v);
    }
    const double chroma = (1 - std::abs(2 * b / 255 - 1)) * c;
    const auto channel = [&](double shift) {
        const double k = std::fmod(a * 6 / 255 + shift, 6.0);
        return b - chroma / 2 + chroma * std::clamp(std::min(k, 4 - k), 0.0, 1.0);
    };
    return Rgb(channel(2), channel(0), channel(4));
}

std::string Setting(const char *name, int32_t value) { return std::string(" --set ") + name + "=" + std::to_string(value); }

std::string EntryText(const SINGLE_KEY &entry, eCK_Type type) {
    const int32_t value = entry.nValue & 0xFFFFFF;
    const uint32_t colour = ColourNear(type, value);
    const auto part = [&](int shift) { return std::to_string(entry.nDelta >> shift & 255); };
    std::string out = " -c " + ColourText(colour) + " -t " + part(0) + "," + part(8) + "," + part(16) + " -s " +
                      std::to_string(std::clamp(entry.nSmoothRange, 0, 255)) + (entry.nReverseKey > 0 ? " --reverse" : "");
    if (KeyValue(type, colour) != value) out += Setting("nValue", value);
    const std::pair<const char *, int32_t> fields[] = {{"nAlpha", entry.nAlpha},
                                                       {"nCancelRange", entry.nCancelRange},
                                                       {"nCancelPower", entry.nCancelPower},
                                                       {"nCancelChroma", entry.nCancelChroma},
                                                       {"nCancelLuma", entry.nCancelLuma},
                                                       {"nCancelAlpha", entry.nCancelAlpha}};
    for (const auto &[name, number] : fields) {
        if (number != 0) out += Setting(name, number);
    }
    return out;
}

template <class Predicate>
int32_t CountEntries(const CHROMA_KEY_RAW &key, Predicate predicate) {
    const int32_t used = std::clamp(key.nKeysUsed, 0, 16);
    return static_cast<int32_t>(std::count_if(key.arrKeys, key.arrKeys + used, predicate));
}

}    // namespace

std::string RawKeyText(const CHROMA_KEY_RAW &key) {
    const int32_t used = std::clamp(key.nKeysUsed, 0, 16);
    if (key.eType != eCKT_RGB && key.eType != eCKT_HLS && key.eType != eCKT_YUV) return "--type Alpha";
    if (EmptyEntries(key) == used) return "--type Alpha";
    std::string out = std::string("--type ") + (key.eType == eCKT_RGB ? "RGB" : key.eType == eCKT_HLS ? "HLS" : "YUV");
    out += Setting("nMinTransparent", key.nMinTransparent) + Setting("nMaxTransparent", key.nMaxTransparent) +
           Setting("nEdgesSmooth", key.nEdgesSmooth);
    if (key.bColorCancel != 0) out += Setting("bColorCancel", key.bColorCancel);
    if (key.nInverseKey != 0) out += Setting("nInverseKey", key.nInverseKey);
    for (int32_t i = 0; i < used; ++i) {
        if (key.arrKeys[i].nDelta != 0) out += EntryText(key.arrKeys[i], key.eType);
    }
    return out;
}

std::string KeyColours(const CHROMA_KEY_RAW &key) {
    std::string out;
    for (int32_t i = 0; i < std::clamp(key.nKeysUsed, 0, 16); ++i) {
        const SINGLE_KEY &entry = key.arrKeys[i];
        if (entry.nDelta == 0 || entry.nReverseKey > 0) continue;
        out += (out.empty() ? "" : " ") + ColourText(ColourNear(key.eType, entry.nValue));
    }
    return out;
}

int32_t EmptyEntries(const CHROMA_KEY_RAW &key) {
    return CountEntries(key, [](const SINGLE_KEY &k) { return k.nDelta == 0; });
}

int32_t ExcludeEntries(const CHROMA_KEY_RAW &key) {
    return CountEntries(key, [](const SINGLE_KEY &k) { return k.nDelta != 0 && k.nReverseKey > 0; });
}

}    // namespace zkey
