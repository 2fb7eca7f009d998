// What is doubtful in a saved key that somebody edited. The library takes what it can read of such a text, reads the rest as 0
// and says nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zkey {

inline constexpr const char *kNoXml = "it is not XML";
inline constexpr const char *kNoConfig = "it has no m_config element whose \"keys\" is 1 or more, as zkey --save-key writes it";

struct KeyDoubts {
    std::vector<std::string> warnings;    ///< a line each; the key is read all the same
    std::string refusal;                  ///< the end of a line that starts with the file's name, or nothing
};

/// `bytes` are those of the file: ASCII, UTF-8 or UTF-16. In a text of any other encoding nothing is found.
KeyDoubts FindKeyDoubts(std::string_view bytes);

}    // namespace zkey
