// Bounds on foreign text, far above any honest file. What goes past them is refused as a whole with `kErrorTooLarge`.
#pragma once

#include "zchromakey/com.h"

namespace zck::XMLParse {

constexpr HRESULT kErrorTooLarge = static_cast<HRESULT>(0x800700DF);

/// Bytes of a file.
constexpr size_t kFileBytesMax = size_t{64} << 20;
/// Units of a text.
constexpr size_t kTextUnitsMax = size_t{64} << 20;
/// Nodes, text children and attributes of one document or list, every element of a list's paths a node: a node takes some
/// 600 bytes of memory.
constexpr size_t kItemsMax = 1000000;
/// Nested elements, the root counted. A deeper element is dropped, its content falls to the element around it.
constexpr size_t kDepthMax = 1024;

}    // namespace zck::XMLParse
