// The packed form of ancillary data: a four-character code, a length, and that many bytes, again and again.
#pragma once

#include "frames/data/data_blob.h"
#include "frames/data/name_map.h"

namespace zck {

using DataMap = NameMap<DataBlobPtr>;

/// All entries in one block of the task allocator, names as their codes, inline values as 8 bytes. No block without entries.
/// `E_OUTOFMEMORY` above 0x7FFFFFFF bytes.
HRESULT DataPack(const DataMap &map, int32_t &size, void *&block);

/// One entry's used bytes in such a block; no block when there are none.
HRESULT DataPackOne(const DataBlob &blob, int32_t &size, void *&block);

/// Adds what `size` bytes from outside state. An entry that does not fit ends the walk; one without a code is passed over. A
/// length of 0 takes eight bytes that are then read again: the writer never writes 0. Throws `std::bad_alloc`;
/// `E_OUTOFMEMORY` leaves the entries that came before.
HRESULT DataUnpack(const uint8_t *packed, int64_t size, DataMap &map);

/// Copies `source` as packing and unpacking would: names become codes, entries without a code are lost, inline values become 8
/// bytes. Other bytes are shared.
HRESULT DataTakeCoded(const DataMap &source, DataMap &map);

}    // namespace zck
