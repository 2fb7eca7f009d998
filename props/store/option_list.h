// The values that a property may take, as one text.
#pragma once

#include <vector>

#include "platform/text.h"

namespace zck {

/// The items of `values`, which must outlive them: separated by runs of "|" where there is one, otherwise by runs of blank,
/// TAB, CR, LF, ";" and ",". No item is empty.
std::vector<TextView> OptionItems(TextView values);

}    // namespace zck
