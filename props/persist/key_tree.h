// A key as a tree of settings: what a saved configuration of the keyer holds.
//
//     <m_config type='3' keys='1' ...>
//         <key value='0xFF3C8040' delta='0x2A2A2A05' ... reverse_key='0'/>
//         <adjust power='0.0' transparent='0.05' ...>
//             <color range='1.0' .../>
//             <range rhy='0.66' .../>
//         </adjust>
//     </m_config>
#pragma once

#include "xml/node.h"
#include "zchromakey/key_types.h"

namespace zck {

/// Adds the key to a fresh node: the root's attributes, an element `key` for each entry in use, the element `adjust`.
/// `dblTransparent` is not kept: `dblExclTransparent` goes by the same name and overwrites it. Throws `std::bad_alloc`.
void KeyToTree(const CHROMA_KEY_RAW &raw, const CK_ADJUST &adjust, XMLParse::CoXMLNode &root);

/// The record of a tree; what the tree does not have is 0. Entry i is the root's child i, or its last one, and stays 0 when
/// that is no element `key`: nothing is searched for. A count above the table is cut, a negative one stays.
CHROMA_KEY_RAW KeyFromTree(XMLParse::CoXMLNode &root);

/// Reads the element `adjust` over the given values; what it does not have stays as it is.
void AdjustFromTree(XMLParse::CoXMLNode &root, CK_ADJUST &adjust);

}    // namespace zck
