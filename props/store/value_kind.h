// How a text that is set for the whole tree is taken.
#pragma once

#include "platform/text.h"

namespace zck {

enum class ValueKind {
    Empty,
    Plain,            ///< no "="
    AttributeList,    ///< a "=" and no "<"
    Xml,              ///< a "=" and a "<"
};

/// Signs between two ' or two " do not count; a quote without its partner is an ordinary character, so "it's a=b" is a list.
/// A text without "=" is plain, even if it looks like XML.
ValueKind ValueKindOf(TextView value) noexcept;

}    // namespace zck
