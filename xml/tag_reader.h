// One tag at a time.
#pragma once

#include "platform/text.h"

namespace zck::XMLParse {

enum class TagKind { Closing = -1, Empty = 0, Opening = 1, CData = 2 };

struct Tag {
    size_t start = 0;    ///< of the "<"
    size_t end = 0;      ///< behind the ">"
    TextView name;       ///< as it is written
    TextView rest;       ///< the attributes, or what the CDATA holds
    TagKind kind = TagKind::Empty;
};

/// The next tag at or behind `position`; comments and "<?...?>" are passed over. False when there is none: then there is
/// none in all the rest. A tag without ">" runs to the end of the text.
bool ReadTag(TextView text, size_t position, Tag &tag) noexcept;

}    // namespace zck::XMLParse
