// A tree as text.
#pragma once

#include "xml/node.h"

namespace zck::XMLParse {

/// The indented text of a node and all below it: CR LF and tabs, no declaration, no byte order mark, no line break at the
/// end. `depth` counts the tabs in front; below 0 all stands in one line. Throws `std::bad_alloc`.
Text XMLText(CoXMLNode &node, int32_t depth = 0);

/// The same as a counted string.
HRESULT WriteXML(CoXMLNode &node, BSTR *out) noexcept;

/// A node's content between its tags, in one line.
Text InnerXML(CoXMLNode &node);

/// "<", ">" and "&" become entities; quotes stay.
void AppendEscaped(Text &out, TextView text);

}    // namespace zck::XMLParse
