// A raw key in words: the options of `zkey key` that give it, and what a user should know about its entries.
#pragma once

#include <string>

#include "zchromakey/key_types.h"

namespace zkey {

/// Options that give a key which keys the same. Entries that are switched off are left out. "--type Alpha" for a key that
/// takes nothing out.
std::string RawKeyText(const CHROMA_KEY_RAW &key);

/// Colours near the centres of the entries that take something out, one after the other.
std::string KeyColours(const CHROMA_KEY_RAW &key);

/// Entries that key nothing because they are empty.
int32_t EmptyEntries(const CHROMA_KEY_RAW &key);
/// Entries that protect their colours.
int32_t ExcludeEntries(const CHROMA_KEY_RAW &key);

}    // namespace zkey
