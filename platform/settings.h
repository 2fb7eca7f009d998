// Settings that a user has stored for a class: the registry on Windows, a file on other systems.
#pragma once

#include <vector>

#include "platform/text.h"

namespace zck {

struct StoredSetting {
    Text name;
    Text value;
};

/// Most settings of one key, and most units of all their names and values together. What is stored beyond is not looked at:
/// whoever can write there can also make an object's construction slow.
constexpr size_t kMostSettings = 4096;
constexpr size_t kMostSettingsText = size_t{1} << 20;

/// Reads the named settings directly under a key such as "Software\Orvane\Quorvex\ZChromaKey", in the order of the file's lines
/// or in the registry's own. `S_FALSE` and none when there is no such key. `E_INVALIDARG` for a key with an empty element, ".",
/// ".." or a "/".
///
/// On Windows the key lies under `HKEY_CURRENT_USER`: string values as they are up to the first zero, 32-bit numbers as
/// unsigned decimals, all else is skipped, the unnamed value too.
///
/// Elsewhere "Software\A\B\C" is the file A/B/C.conf in `$XDG_CONFIG_HOME`, or in .config of the home folder without it (a
/// path that is not absolute counts as none). It is UTF-8 with one "name=value" a line; blanks count. Empty lines and lines
/// that start with "#" are comments. In names and values "\\", "\n", "\r" stand for a backslash, LF and CR, and "\=" and "\#"
/// for the signs themselves. A line that is not well-formed (no "=", no name, not UTF-8, a zero, an unknown escape) is
/// skipped. Only a regular file is read; one of more than four bytes for each of `kMostSettingsText` is refused.
HRESULT SettingsLoad(TextView key, std::vector<StoredSetting> &settings) noexcept;

/// Replaces all settings of a key, which is made when it is not there. Names must not be empty, and neither names nor values
/// may hold a zero (`E_INVALIDARG`). A reader of the file sees the old or the new content, never a part; on Windows that holds
/// for each value.
HRESULT SettingsSave(TextView key, const std::vector<StoredSetting> &settings) noexcept;

/// The elements of a key; false for a key that is refused.
bool SettingsKeyElements(TextView key, std::vector<Text> &elements);
bool SettingsAreValid(const std::vector<StoredSetting> &settings) noexcept;

}    // namespace zck
