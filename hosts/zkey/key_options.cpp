#include "hosts/zkey/key_options.h"

#include <algorithm>

#include "hosts/zkey/colours.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr std::size_t kMostKeys = 16;

struct EntryField {
    const char *name;
    int32_t SINGLE_KEY::*member;
    int32_t least;
    int32_t most;
};

constexpr std::array<EntryField, 10> kEntryFields = {{{"nValue", &SINGLE_KEY::nValue, 0, 0xFFFFFF},
                                                      {"nDelta", &SINGLE_KEY::nDelta, 0, 0xFFFFFF},
                                                      {"nSmoothRange", &SINGLE_KEY::nSmoothRange, 0, 255},
                                                      {"nAlpha", &SINGLE_KEY::nAlpha, 0, 255},
                                                      {"nCancelRange", &SINGLE_KEY::nCancelRange, 0, 255},
                                                      {"nCancelPower", &SINGLE_KEY::nCancelPower, -255, 255},
                                                      {"nCancelChroma", &SINGLE_KEY::nCancelChroma, -255, 255},
                                                      {"nCancelLuma", &SINGLE_KEY::nCancelLuma, -255, 255},
                                                      {"nCancelAlpha", &SINGLE_KEY::nCancelAlpha, -255, 255},
                                                      {"nReverseKey", &SINGLE_KEY::nReverseKey, 0, 1}}};

struct RecordField {
    const char *name;
    int32_t CHROMA_KEY_RAW::*member;
    int32_t least;
    int32_t most;
};

constexpr std::array<RecordField, 6> kRecordFields = {{{"nMinTransparent", &CHROMA_KEY_RAW::nMinTransparent, 0, 255},
                                                       {"nMaxTransparent", &CHROMA_KEY_RAW::nMaxTransparent, 0, 255},
                                                       {"nEdgesSmooth", &CHROMA_KEY_RAW::nEdgesSmooth, 0, 100},
                                                       {"bColorCancel", &CHROMA_KEY_RAW::bColorCancel, 0, 2},
                                                       {"nInterlacedVideo", &CHROMA_KEY_RAW::nInterlacedVideo, 0, 1},
                                                       {"nInverseKey", &CHROMA_KEY_RAW::nInverseKey, 0, 3}}};

template <class Fields>
auto FindField(const Fields &fields, std::string_view name) -> decltype(fields.data()) {
    for (const auto &f : fields) {
        if (SameWord(f.name, name)) return &f;
    }
    return nullptr;
}

template <class Fields>
std::string Names(const Fields &fields) {
    std::string out;
    for (const auto &f : fields) out += (out.empty() ? "" : ", ") + std::string(f.name);
    return out;
}

template <class Field>
void RequireRange(const Field &field, int32_t value) {
    if (value >= field.least && value <= field.most) return;
    FailUsage(std::string("--set ") + field.name + "=" + std::to_string(value) + ": give " + std::to_string(field.least) +
              " to " + std::to_string(field.most));
}

int32_t ParseByte(std::string_view option, std::string_view text) {
    int32_t value = 0;
    if (!ParseWhole(text, value) || value < 0 || value > 255) {
        FailUsage(std::string(option) + ": \"" + std::string(text) + "\" is no number from 0 to 255");
    }
    return value;
}

int32_t Pack(int32_t low, int32_t middle, int32_t high) {
    const auto byte = [](int32_t v) { return std::clamp(v, 0, 255); };
    return byte(low) | (byte(middle) << 8) | (byte(high) << 16);
}

int32_t HlsValue(int32_t red, int32_t green, int32_t blue) {
    const float r = static_cast<float>(red) / 255;
    const float g = static_cast<float>(green) / 255;
    const float b = static_cast<float>(blue) / 255;
    const float most = std::max({r, g, b});
    const float least = std::min({r, g, b});
    const float c = most - least;
    const float l = (most + least) / 2;
    float h = 0;
    float s = 0;
    if (c > 0) {
        s = l <= 0.5F ? c / (most + least) : c / (2 - (most + least));
        h = r == most ? (g - b) * 60 / c : g == most ? 120 + (b - r) * 60 / c : (r - g) * 60 / c + 240;
        if (h < 0) h += 360;
    }
    const auto byte = [](float v) { return static_cast<int32_t>(v + 0.499999F); };
    return Pack(byte(h * 255 / 360), byte(l * 255), byte(s * 255));
}

/// The engine reads the bytes blue, green, red as if they were red, green, blue, and the key lives in that space.
int32_t YuvValue(int32_t red, int32_t green, int32_t blue) {
    const int32_t x0 = blue;
    const int32_t x1 = green;
    const int32_t x2 = red;
    const int32_t t = 19595 * x0 + 38470 * x1 + 7471 * x2;
    const int32_t u = 128 + (((((x2 << 16) - t + 32767) >> 16) * 32244) >> 16);
    const int32_t v = 128 + (((((x0 << 16) - t + 32767) >> 16) * 57475) >> 16);
    return Pack(t >> 16, u, v);
}

/// What the entry leaves open is taken from the screen.
KeyEntry Complete(KeyEntry entry, eCK_Type type, const ScreenKey &screen) {
    if (!entry.colour) entry.colour = screen.colour;
    if (!entry.tolerance) entry.tolerance = screen.tolerance;
    if ((*entry.tolerance)[1] < 0) entry.tolerance = SpreadTolerance(type, (*entry.tolerance)[0]);
    entry.softness = std::clamp(entry.softness.value_or(screen.softness) + entry.softer, 0, 255);
    entry.softer = 0;
    return entry;
}

SINGLE_KEY BuildEntry(const KeyEntry &entry, eCK_Type type) {
    const std::array<int32_t, 3> &tolerance = *entry.tolerance;
    SINGLE_KEY key{};
    key.nValue = KeyValue(type, *entry.colour);
    key.nDelta = Pack(tolerance[0], tolerance[1], tolerance[2]);
    // A tolerance of 0 means the very colour; an all-zero width would switch the entry off.
    if (key.nDelta == 0) key.nDelta = Pack(1, 1, 1);
    key.nSmoothRange = *entry.softness;
    key.nReverseKey = entry.reverse ? 1 : 0;
    for (const FieldSetting &f : entry.fields) key.*(FindField(kEntryFields, f.first)->member) = f.second;
    return key;
}

bool Protects(const KeyEntry &entry) {
    bool reverse = entry.reverse;
    for (const FieldSetting &f : entry.fields) {
        if (SameWord(f.first, "nReverseKey")) reverse = f.second > 0;
    }
    return reverse;
}

}    // namespace

KeyEntry &KeyOptions::Last() {
    if (entries.empty()) entries.emplace_back();
    return entries.back();
}

void KeyOptions::AddColour(std::string_view text) {
    const std::optional<uint32_t> colour = ParseColour(text);
    if (!colour) {
        FailUsage("unknown colour \"" + std::string(text) + "\": give RRGGBB or one of " + ColourNames());
    }
    if (Last().colour) entries.emplace_back();
    if (entries.size() > kMostKeys) FailUsage("--color: a key has 16 colours at most");
    entries.back().colour = colour;
}

void KeyOptions::SetTolerance(std::string_view text) {
    const std::size_t first = text.find(',');
    if (first == std::string_view::npos) {
        // Spread over the channels when the type is known; until then the first channel carries it.
        Last().tolerance = {ParseByte("--tolerance", text), -1, -1};
        return;
    }
    const std::size_t second = text.find(',', first + 1);
    if (second == std::string_view::npos) FailUsage("--tolerance: give one number or three, as 40,20,20");
    Last().tolerance = {ParseByte("--tolerance", text.substr(0, first)),
                        ParseByte("--tolerance", text.substr(first + 1, second - first - 1)),
                        ParseByte("--tolerance", text.substr(second + 1))};
}

void KeyOptions::SetSoftness(std::string_view text) {
    const bool change = text.starts_with('+') || text.starts_with('-');
    const int32_t value = ParseByte("--softness", change ? text.substr(1) : text);
    KeyEntry &entry = Last();
    if (change) {
        entry.softer = text[0] == '-' ? -value : value;
    } else {
        entry.softness = value;
    }
}

void KeyOptions::SetReverse() { Last().reverse = true; }

void KeyOptions::SetType(std::string_view text) {
    if (SameWord(text, "RGB")) {
        type = eCKT_RGB;
    } else if (SameWord(text, "HLS")) {
        type = eCKT_HLS;
    } else if (SameWord(text, "YUV")) {
        type = eCKT_YUV;
    } else if (SameWord(text, "Alpha")) {
        type = eCKT_Alpha;
    } else {
        FailUsage("--type: \"" + std::string(text) + "\" is none of RGB, HLS, YUV, Alpha");
    }
}

void KeyOptions::SetSpill(std::string_view text) { spill = ParseSpill(text); }

void KeyOptions::SetField(std::string_view text) {
    const std::size_t equals = text.find('=');
    const std::string name(text.substr(0, equals));
    int32_t value = 0;
    if (equals == std::string_view::npos || !ParseWhole(text.substr(equals + 1), value)) {
        FailUsage("--set " + std::string(text) + ": give NAME=NUMBER, as nEdgesSmooth=3");
    }
    if (const auto *f = FindField(kRecordFields, name)) {
        RequireRange(*f, value);
        fields.emplace_back(name, value);
    } else if (const auto *e = FindField(kEntryFields, name)) {
        RequireRange(*e, value);
        Last().fields.emplace_back(name, value);
    } else {
        FailUsage("--set: the key has no field \"" + name + "\"; it has " + Names(kRecordFields) + ", and for each colour " +
                  Names(kEntryFields));
    }
}

bool KeyOptions::IsUntouched() const { return !type && !spill && entries.empty() && fields.empty(); }

bool KeyOptions::NeedsScreen() const {
    if (type == eCKT_Alpha) return false;
    return std::none_of(entries.begin(), entries.end(), [](const KeyEntry &e) {
        const bool centre = e.colour || std::any_of(e.fields.begin(), e.fields.end(),
                                                    [](const FieldSetting &f) { return SameWord(f.first, "nValue"); });
        return centre && !Protects(e);
    });
}

int32_t KeyValue(eCK_Type type, uint32_t colour) {
    const auto red = static_cast<int32_t>((colour >> 16) & 255);
    const auto green = static_cast<int32_t>((colour >> 8) & 255);
    const auto blue = static_cast<int32_t>(colour & 255);
    switch (type) {
        case eCKT_HLS:
            return HlsValue(red, green, blue);
        case eCKT_YUV:
            return YuvValue(red, green, blue);
        default:
            return Pack(red, green, blue);
    }
}

std::array<int32_t, 3> SpreadTolerance(eCK_Type type, int32_t tolerance) {
    const int32_t twice = std::min(2 * tolerance, 255);
    switch (type) {
        case eCKT_HLS:
            return {tolerance, twice, twice};
        case eCKT_YUV:
            return {twice, tolerance, tolerance};
        default:
            return {tolerance, tolerance, tolerance};
    }
}

static KeyOptions Completed(const KeyOptions &options, const std::vector<ScreenKey> &screen) {
    KeyOptions out = options;
    out.type = options.type.value_or(kDefaultKeyType);
    out.spill = options.spill.value_or(screen.empty() ? Spill{0, 0, 0} : Spill{});
    out.entries.clear();
    const auto &entries = options.entries;
    if (std::all_of(entries.begin(), entries.end(), [](const KeyEntry &e) { return e.colour && Protects(e); })) {
        for (const ScreenKey &part : screen) out.entries.push_back(Complete({}, *out.type, part));
    }
    for (const KeyEntry &entry : entries) {
        if (entry.colour || screen.empty()) {
            const int32_t softness = Protects(entry) ? kDefaultReverseSoftness : kDefaultSoftness;
            out.entries.push_back(Complete(entry, *out.type, {0, SpreadTolerance(*out.type, kDefaultTolerance), softness}));
        } else {
            for (const ScreenKey &part : screen) out.entries.push_back(Complete(entry, *out.type, part));
        }
    }
    return out;
}

CHROMA_KEY_RAW BuildKey(const KeyOptions &options, const std::vector<ScreenKey> &screen) {
    const KeyOptions whole = Completed(options, screen);
    CHROMA_KEY_RAW raw{};
    raw.eType = *whole.type;
    raw.nMinTransparent = 16;
    raw.nMaxTransparent = 235;
    std::vector<SINGLE_KEY> keys;
    for (const KeyEntry &entry : whole.entries) keys.push_back(BuildEntry(entry, raw.eType));
    if (const auto light = SpillEntry(raw.eType, keys, *whole.spill)) {
        keys.insert(keys.begin(), *light);
        raw.bColorCancel = 1;
    }
    if (keys.size() > kMostKeys) FailUsage("--color: a key has 16 colours at most, and --spill takes the place of one");
    std::copy(keys.begin(), keys.end(), raw.arrKeys);
    raw.nKeysUsed = static_cast<int32_t>(keys.size());
    for (const FieldSetting &f : whole.fields) raw.*(FindField(kRecordFields, f.first)->member) = f.second;
    return raw;
}

std::string KeyText(const KeyOptions &options, const std::vector<ScreenKey> &screen) {
    const KeyOptions whole = Completed(options, screen);
    const auto number = [](int32_t n) { return std::to_string(n); };
    std::string out;
    if (*whole.type != kDefaultKeyType) out += std::string(" --type ") + (*whole.type == eCKT_RGB ? "RGB" : "HLS");
    for (const KeyEntry &e : whole.entries) {
        const std::array<int32_t, 3> &t = *e.tolerance;
        out += " -c " + ColourText(*e.colour) + " -t " + number(t[0]) + "," + number(t[1]) + "," + number(t[2]) + " -s " +
               number(*e.softness) + (e.reverse ? " --reverse" : "");
        for (const FieldSetting &f : e.fields) out += " --set " + f.first + "=" + number(f.second);
    }
    for (const FieldSetting &f : whole.fields) out += " --set " + f.first + "=" + number(f.second);
    if (whole.spill->power > 0) out += " --spill " + SpillText(*whole.spill);
    return out.substr(1);
}

}    // namespace zkey
