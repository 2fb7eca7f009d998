// Byte streams in memory, and the marshaled form of objects, which travels in streams.
#pragma once

#include "zchromakey/com.h"

namespace zck {

constexpr HRESULT kStgMediumFull = static_cast<HRESULT>(0x80030070);    ///< a stream took fewer bytes than it was given

/// A new, empty stream that grows with what is written and frees its bytes with itself.
HRESULT MemoryStreamCreate(IStream **out) noexcept;

/// Whether objects can be given to other processes by way of a stream.
bool MarshalingExists() noexcept;

/// Writes at the stream's position what another process of this machine makes a pointer to the object of, once. A thread
/// without an apartment, a null object and one that does not marshal give the platform's failure; `E_NOTIMPL` where there is
/// no marshaling.
HRESULT ObjectMarshal(IStream *stream, IUnknown *object) noexcept;
/// Reads it at the stream's position. `out` is null after a failure, and the position is anywhere then.
HRESULT ObjectUnmarshal(IStream *stream, IUnknown **out) noexcept;
/// Gives up, at the stream's position, what nobody is going to unmarshal.
void ObjectMarshalDrop(IStream *stream) noexcept;

}    // namespace zck
