// `PropName`: the name of a property that is read for each frame.
#pragma once

#include "xml/name_key.h"
#include "xml/path.h"

namespace zck {

/// The name of an attribute of the root, hashed while compiling: reading by it compares no text. A path does not compile.
class PropName {
public:
    consteval explicit PropName(TextView name) : m_key(XMLParse::NameKey(name)) {
        if (name.empty() || XMLParse::FindSeparator(name) != TextView::npos) throw "not the name of one property";
    }
    constexpr uint64_t Key() const noexcept { return m_key; }

private:
    uint64_t m_key;
};

}    // namespace zck
