// Sound files: RIFF WAVE. Written byte for byte as told here, read from any program's file.
#pragma once

#include "frames/audio/audio_work.h"
#include "platform/files.h"

namespace zck {

/// Where the sound of a file lies.
struct WavPlace {
    Z_AUD_PROPS props;
    uint64_t sizeAt;       ///< of the chunk's size field
    uint64_t dataAt;       ///< of the first sample
    uint64_t dataBytes;    ///< inside the file
};

/// Walks the chunks of an open file. Integers, floats and the extensible form of both; the bits of a sample are those that fit
/// the width of a sample in the file. A data chunk of size 0 or 0xFFFFFFFF, which a writer did not finish, goes to the end of
/// the file. The size of the whole is not believed. `VFW_E_INVALID_MEDIA_TYPE` for what is no such file; errors of the system.
HRESULT WavFind(File &file, WavPlace &place) noexcept;

/// The header of a file of our own: 44 bytes for at most 2 channels of at most 16 bits, else the extensible form, 68 bytes.
struct WavHeader {
    uint8_t bytes[68];
    uint32_t size;
};

/// `VFW_E_INVALID_MEDIA_TYPE` where the record does not fit the header's fields.
HRESULT WavHeaderMake(const Z_AUD_PROPS &props, uint32_t dataBytes, WavHeader &header) noexcept;

/// Writes sound into a new file, or behind the sound of an old one of the same channels, rate and bits; chunks that followed it
/// are cut off. Any other old file starts anew. The cost is that of the new bytes.
/// `VFW_E_INVALID_MEDIA_TYPE` for a record that has no header, with no file touched; `ERROR_FILE_TOO_LARGE` as a result where
/// a size would leave 32 bits, with the file unchanged; errors of the system, and what could be written stays.
HRESULT WavSave(TextView name, bool bAppend, const AudioBlock &audio) noexcept;

/// Reads samples from `first` on, at most `count`; 0 stands for as long as `like` is, which may have none.
/// `ERROR_HANDLE_EOF` as a result from the end on, `E_INVALIDARG` for negative numbers, `E_OUTOFMEMORY` for more bytes than a
/// block has.
HRESULT WavLoad(TextView name, int64_t first, int64_t count, const AudioBlock &like, Z_AUD_PROPS &props,
                CBLOBHolder<CHeapAlloc> &bytes) noexcept;

}    // namespace zck
