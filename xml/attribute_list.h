// The attribute list: `name=value other='two words'`.
#pragma once

#include "xml/node.h"

namespace zck::XMLParse {

/// How attributes that exist are treated.
enum ListMode : int32_t {
    kListKeep = 0,
    kListOverwrite = 1,
    kListReplaceAll = 2,    ///< all attributes are removed first
};

enum class ListNames {
    Flat,     ///< "a::b" is a name like any other
    Paths,    ///< nodes are made on the way
};

enum class BareNames {
    Drop,
    Store,    ///< a name without "=" gets an empty value
};

/// Reads a list into the node. True when there was at least one pair, also when it was kept out. Values run to the closing
/// quote, or without a quote to the next space; entities in them stay as they are. Pairs without a name, and a name with "="
/// at the end of the text, are dropped. Modes outside the list overwrite.
///
/// Throws `std::bad_alloc`. `kErrorTooLarge` in `status`, when given, after too many pairs and elements of their paths; what
/// came before them is stored.
bool ParseAttributes(XMLNodeImpl &node, TextView text, int32_t mode, ListNames names, BareNames bare = BareNames::Drop,
                     HRESULT *status = nullptr);

/// The same with a count of items that are still allowed; false when they ran out.
bool ParseAttributesCounted(XMLNodeImpl &node, TextView text, int32_t mode, ListNames names, BareNames bare, size_t &itemsLeft,
                            bool &anyPair);

/// The node's own attributes as a list, each name behind the prefix. With `withValue` the node's text comes first, under the
/// name "_node_value", which means nothing to the reader.
Text WriteAttributes(const XMLNodeImpl &node, bool withValue, TextView prefix = {});

/// The same with a blank in front of each.
void AppendAttributes(Text &out, const XMLNodeImpl &node, TextView prefix = {});

/// In ' quotes. With a ' in the value in " quotes, and then each " of the value becomes a '. Nothing else is escaped.
void AppendQuoted(Text &out, TextView value);

}    // namespace zck::XMLParse
