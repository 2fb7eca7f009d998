// The format table as lists of codes, so that a new row is tested wherever it belongs.
#pragma once

#include <vector>

#include "frames/media/format_table.h"

namespace zck::test {

/// The codes of the rows for which `wanted(row)` holds, in the table's order.
template <class Wanted>
std::vector<eZFCC> FormatsWhere(Wanted &&wanted) {
    std::vector<eZFCC> codes;
    for (const FormatRow &row : kFormatTable) {
        if (wanted(row)) codes.push_back(row.fcc);
    }
    return codes;
}

/// Formats that the conversion between pictures serves.
inline std::vector<eZFCC> PictureFormats() {
    return FormatsWhere([](const FormatRow &row) { return row.pixels != PixelClass::None; });
}

/// Formats with direct routes.
inline std::vector<eZFCC> RouteFormats() {
    return FormatsWhere([](const FormatRow &row) { return row.route != RouteClass::None; });
}

}    // namespace zck::test
