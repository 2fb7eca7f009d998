// The keyer's properties for people. The library keeps any name and any value; this program refuses those that make no sense.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zchromakey/properties.h"

namespace zkey {

/// Null for a name that the keyer does not know. Letters are compared without regard to case.
const ZPropertyInfo *FindProperty(std::string_view name);
bool IsReadOnly(const ZPropertyInfo &property);
/// For people: "boolean", "1 to 16" and so on.
std::string KindOf(const ZPropertyInfo &property);
/// For people: the meaning, and what zkey does with the property.
std::string MeaningOf(const ZPropertyInfo &property);

/// One line about stored properties that a fresh keyer has and that say other than by default, or that are nonsense; nothing
/// when there are none. `kept` is what the keyer keeps, without what the command line sets anyway.
std::string StoredInForce(const std::vector<std::pair<std::string, std::string>> &kept);

/// Ends the program with a usage line that starts with `option` when the keyer has no such property, when it cannot be set, or
/// when the value makes no sense for it.
void CheckProperty(const std::string &option, const std::string &name, const std::string &value);

}    // namespace zkey
