// Entities of texts.
#pragma once

#include "platform/text.h"

namespace zck::XMLParse {

/// The text as it is meant: CR, LF and TAB become blanks, then entities become characters. A name is known by its first
/// letters alone and takes the length of the whole name, whatever follows: "&lo;x" is "<x", "&cost;" the copyright sign. Any
/// other "&" is dropped together with the character behind it.
///
/// Unless `keepBlank`, nothing is left of a text of blanks only; a blank of "&nbsp;" is kept, though.
Text DecodeText(TextView text, bool keepBlank);

}    // namespace zck::XMLParse
