// The forgiving reader.
#pragma once

#include "xml/node.h"

namespace zck::XMLParse {

/// Replaces the node's content and name by those of the first element of the text. There are no syntax errors once a first
/// tag was found: missing closing tags and ">" are thought at the end of the text, stray closing tags are skipped. Comments
/// and "<?...?>" vanish. Element names become lower case, attribute names keep their case.
///
/// `E_INVALIDARG` for a text without a tag, `kErrorTooLarge` past the bounds of `limits.h`; the node is then empty and has its
/// former name. Readers of the node see the old content or the new one.
///
/// `end`, when given: in, where the text ends for this call; out, behind the tag that ended the element. `noRootTag`: the
/// text is the content of the node, which keeps its name. `rawText`: texts are neither trimmed nor dropped for being blank.
HRESULT ParseXML(CoXMLNode &node, TextView text, size_t *end = nullptr, bool noRootTag = false, bool rawText = false) noexcept;

}    // namespace zck::XMLParse
