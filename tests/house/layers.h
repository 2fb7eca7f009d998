// The table of rooms and arrows, and the includes that go against it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/house/source_tree.h"

namespace house {

/// Each room with the rooms that it may include.
using Layers = std::map<std::string, std::vector<std::string>>;

/// Reads "room: rooms" lines; '#' begins a comment. A line without a colon gives a room named "?".
Layers LayersFromText(std::string_view text);

/// The room of a path: the longest one of the table that is a folder above it. Empty if there is none.
std::string RoomOf(const Layers &layers, std::string_view path);

/// Includes that the table does not allow, and files in no room.
std::vector<std::string> LayerFindings(const Layers &layers, const std::vector<SourceFile> &files);

/// Rooms from which a road leads back to themselves.
std::vector<std::string> Circles(const Layers &layers);

}    // namespace house
