// Properties that are kept for the next time: the library reads them whenever a keyer is made. One implementation per system:
// values of the registry key Software\Orvane\Quorvex\ZChromaKey, or lines of the file Orvane/Quorvex/ZChromaKey.conf in
// $XDG_CONFIG_HOME, by default ~/.config.
#pragma once

#include <optional>
#include <string>

namespace zkey {

/// What is stored under this name, or nothing. Letters of names are compared without regard to case.
std::optional<std::string> StoredProperty(const std::string &name);
/// Keeps the value, without a value forgets the property, and leaves all others as they are. True when one was there before.
/// Ends the program with a line that names the place when it cannot be written.
bool StoreProperty(const std::string &name, const std::optional<std::string> &value);
/// Where stored properties lie, for people.
std::string StoredPlace();

}    // namespace zkey
