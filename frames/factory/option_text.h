// Options of the factory's creating operations: name=value pairs in one text, values optionally quoted.
#pragma once

#include "xml/node.h"

namespace zck {

/// The pairs as attributes of a node "props" of their own. Names are paths and their case is ignored; the last of two pairs
/// of one name counts, bare names are dropped. Values are read by the node's typed reads.
///
/// `kErrorTooLarge` for more pairs than `xml/limits.h` allows. Throws `std::bad_alloc`.
HRESULT OptionsFromText(TextView text, XMLParse::XMLNodePtr &options);

/// A colour 0xAABBGGRR by the forms of `ColorFromText`; 0 for a text that is no colour, and when the name is missing.
uint32_t OptionColor(XMLParse::CoXMLNode &options, TextView name);

}    // namespace zck
