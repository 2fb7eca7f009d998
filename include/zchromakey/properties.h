// The properties of the keyer: names, defaults, ranges and meanings. `IZProps` keeps any name and any text; these are the ones
// that the library reads. A property takes effect with the next frame.
#pragma once

#include <cstdint>

/// What the text of a property holds.
enum eZPropertyKind : int32_t {
    eZPK_Text = 0,
    eZPK_Boolean = 1,    ///< "true", "false", "yes", "no", "1" or "0"
    eZPK_Integer = 2,    ///< a decimal number from `nMin` to `nMax`
    eZPK_Real = 3,
    eZPK_Borders = 4,     ///< up to four numbers of pixels from `nMin` to `nMax`: left, top, right, bottom
    eZPK_Computed = 5,    ///< can only be read
};

/// One property. The texts are ASCII and last as long as the program.
struct ZPropertyInfo {
    const char *pszName;
    eZPropertyKind eKind;
    const char *pszDefault;
    int32_t nMin;
    int32_t nMax;
    const char *pszMeaning;
};

/// All properties, in the order in which the keyer lists them; those that are computed stand last.
inline constexpr ZPropertyInfo kZProperties[] = {
    {"background", eZPK_Text, "checker", 0, 0,
     "behind previews of a key: \"checker\", the name of a colour, or a picture's file"},
    {"detect.blocks", eZPK_Integer, "48", 1, 32768, "how finely a picture is divided when a key is looked for in it"},
    {"detect.threshold", eZPK_Integer, "16", 0, 255, "how much the colours of one block may differ"},
    {"detect.key_diff", eZPK_Real, "1.0", 0, 0, "how far the colours of a key lie apart"},
    {"detect.max_keys", eZPK_Integer, "1", 1, 16, "how many colours a key gets"},
    {"output.thread", eZPK_Boolean, "true", 0, 0, "results come one call late, from a thread of the keyer"},
    {"process.threads", eZPK_Integer, "2", 1, 16, "threads that key one frame"},
    {"keying.borders", eZPK_Borders, "", 0, 32768, "pixels at the borders that are not keyed and stay opaque"},
    {"dll-version", eZPK_Computed, "", 0, 0, "version of the library"},
    {"dll-file-version", eZPK_Computed, "", 0, 0, "version of its file"},
    {"dll-path", eZPK_Computed, "", 0, 0, "where it lies"},
    {"dll-date", eZPK_Computed, "", 0, 0, "when it was built"},
};
