// The key of a name: what names of nodes and attributes are compared by.
#pragma once

#include "platform/name_key.h"

namespace zck::XMLParse {

using zck::NameKey;

}    // namespace zck::XMLParse
