// What the keyer's properties mean. The library keeps names and values only, and takes any; this program knows better.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zkey {

struct Property {
    const char *name;
    const char *type;    ///< for people: "boolean", "1 to 16" and so on
    const char *byDefault;
    const char *meaning;
    bool readOnly;
};

/// All properties; the last entry has no name.
const Property *PropertyTable();
/// Null for a name that the keyer does not know. Letters are compared without regard to case.
const Property *FindProperty(std::string_view name);

/// One line about stored properties that a fresh keyer has and that say other than by default, or that are nonsense; nothing
/// when there are none. `kept` is what the keyer keeps, without what the command line sets anyway.
std::string StoredInForce(const std::vector<std::pair<std::string, std::string>> &kept);

/// Ends the program with a usage line that starts with `option` when the keyer has no such property, when it cannot be set, or
/// when the value makes no sense for it.
void CheckProperty(const std::string &option, const std::string &name, const std::string &value);

}    // namespace zkey
