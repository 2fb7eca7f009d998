// The key as the user describes it on the command line, and the record that the library computes from.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/zkey/spill.h"
#include "zchromakey/key_types.h"

namespace zkey {

using FieldSetting = std::pair<std::string, int32_t>;

/// One `--color` with the options that follow it.
struct KeyEntry {
    std::optional<uint32_t> colour;    ///< 0x00RRGGBB
    std::optional<std::array<int32_t, 3>> tolerance;
    std::optional<int32_t> softness;
    int32_t softer = 0;    ///< added to the softness that is given, found, or used without either
    bool reverse = false;
    std::vector<FieldSetting> fields;    ///< fields of `SINGLE_KEY` by name, applied last
};

struct KeyOptions {
    std::optional<eCK_Type> type;
    std::optional<Spill> spill;    ///< not given: only for a screen that was found
    std::vector<KeyEntry> entries;
    std::vector<FieldSetting> fields;    ///< fields of `CHROMA_KEY_RAW` by name, applied last

    /// `--color`: gives the last entry its colour if it has none yet, else starts a new entry.
    void AddColour(std::string_view text);
    void SetTolerance(std::string_view text);
    /// N, or +N and -N for so much more or less than what was found.
    void SetSoftness(std::string_view text);
    void SetReverse();
    void SetType(std::string_view text);
    /// `--spill`: for the whole key.
    void SetSpill(std::string_view text);
    /// `--set NAME=VALUE`.
    void SetField(std::string_view text);

    /// True when no option of the key was given.
    bool IsUntouched() const;
    /// True when no entry says what is to be keyed out, so that the screen has to be found in the picture.
    bool NeedsScreen() const;

private:
    KeyEntry &Last();
};

/// A part of a screen that was found in a picture: the key to use when none was given.
struct ScreenKey {
    uint32_t colour = 0;    ///< 0x00RRGGBB
    std::array<int32_t, 3> tolerance{};
    int32_t softness = 0;
};

inline constexpr eCK_Type kDefaultKeyType = eCKT_YUV;
inline constexpr int32_t kDefaultTolerance = 24;
inline constexpr int32_t kDefaultSoftness = 40;
/// Of a protected colour: a wide passage would bring a veil of the whole screen back.
inline constexpr int32_t kDefaultReverseSoftness = 4;

/// The colour as the centre of a key of this type, in the byte order of the record.
int32_t KeyValue(eCK_Type type, uint32_t colour);
/// One number for all channels: hue, or the two colour channels, take it as it is; brightness and saturation twice.
std::array<int32_t, 3> SpreadTolerance(eCK_Type type, int32_t tolerance);

/// The record. An entry that lacks a colour stands for all parts of the screen; if no entry says what is to be keyed out,
/// they go before the others. The entry that takes off the screen's light goes before all.
CHROMA_KEY_RAW BuildKey(const KeyOptions &options, const std::vector<ScreenKey> &screen);

/// The options that give the same key when no screen has to be found; for a key that takes something out.
std::string KeyText(const KeyOptions &options, const std::vector<ScreenKey> &screen);

}    // namespace zkey
