// The picture as an image file and as a bitmap of the platform.
#include <cstdlib>
#include <cstring>
#include <shared_mutex>
#include <vector>

#include "frames/media/picture.h"
#include "frames/media/pixel_format.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "frames/object/pixel_work.h"
#include "imaging/convert/convert_bits.h"
#include "imaging/files/image_writer.h"
#include "platform/bitmap.h"

namespace zck {
namespace {

using Rows = std::vector<uint8_t>;

bool HasSize(const Z_VID_PROPS &props) { return props.nWidth > 0 && props.nHeight != 0; }

/// The rows of an RGB24 picture as the writer wants them: as wide as those of pixels with four bytes, in their order in memory.
HRESULT RowsWiden(Z_VID_PROPS props, const uint8_t *pixels, uint32_t size, Rows &rows) {
    ConstPicture picture;
    if (FAILED(RecordComplete(props)) || !PictureMake(props, pixels, size, &picture)) return kVfwEInvalidMediaType;
    const int64_t rowBytes = int64_t{4} * picture.width;
    if (rowBytes * picture.rows > INT32_MAX) return E_FAIL;
    rows.resize(static_cast<size_t>(rowBytes * picture.rows));
    const ConstPicture stored = picture.InMemoryOrder();
    for (int32_t y = 0; y < stored.rows; ++y)
        std::memcpy(rows.data() + y * rowBytes, stored.Row(y), static_cast<size_t>(stored.format->PixelRowBytes(stored.width)));
    return S_OK;
}

HRESULT Save(const Z_VID_PROPS &props, const uint8_t *pixels, uint32_t size, TextView name) {
    const ImgDesc desc = {props.fccType, props.nWidth, props.nHeight, RowPixels(props.fccType, props.nRowBytes)};
    // The writer finds out what is wrong with the size, and with formats that it does not know.
    if (!HasSize(props) || (props.fccType != eZFCC_RGB24 && !Is32BitFormat(props.fccType)))
        return SaveImageFile(pixels, &desc, name);
    if (!PixelsFit(props, size)) return kVfwEInvalidMediaType;
    if (props.fccType == eZFCC_RGB24) {
        Rows rows;
        const HRESULT hr = RowsWiden(props, pixels, size, rows);
        return FAILED(hr) ? hr : SaveImageFile(rows.data(), &desc, name);
    }
    const int64_t read = int64_t{4} * props.nWidth * std::abs(int64_t{props.nHeight});
    return read <= size ? SaveImageFile(pixels, &desc, name) : kVfwEInvalidMediaType;
}

/// Rows as the platform counts them, whatever the record says about theirs.
HRESULT MakeBitmap(const Z_VID_PROPS &props, const uint8_t *pixels, uint32_t size, HBITMAP *bitmap) {
    const FormatRow *format = PixelFormatFind(props.fccType);
    if (format == nullptr) return E_INVALIDARG;
    if (!HasSize(props) || !PixelsFit(props, size)) return kVfwEInvalidMediaType;
    const int64_t bytes = int64_t{RowBytes(props.fccType, props.nWidth)} * std::abs(int64_t{props.nHeight});
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof(header);
    header.biWidth = props.nWidth;
    header.biHeight = props.nHeight;
    header.biPlanes = 1;
    header.biBitCount = static_cast<uint16_t>(format->nBits);
    header.biCompression = format->bCompressionTag ? static_cast<DWORD>(props.fccType) : 0;
    header.biSizeImage = static_cast<DWORD>(bytes);
    if (bytes <= size) return BitmapMake(header, pixels, bitmap);
    // The padding of the last row is missing.
    Rows rows(pixels, pixels + size);
    rows.resize(static_cast<size_t>(bytes));
    return BitmapMake(header, rows.data(), bitmap);
}

}    // namespace

HRESULT CCoZFrame2::CloneForImage(ComPtr<IZFrame_I> &clone) {
    if (!m_pFactory) return E_UNEXPECTED;
    const HRESULT hr = m_pFactory->FrameCloneConvert(this, clone.Put(), eZFC_VideoRef, eZFCC_ARGB32);
    return SUCCEEDED(hr) && clone ? S_OK : E_OUTOFMEMORY;
}

HRESULT CCoZFrame2::FrameVideoGetHbitmap(int64_t *_pcpHBitmap) {
    if (_pcpHBitmap == nullptr) return E_POINTER;
    *_pcpHBitmap = 0;
    return Guarded([&]() -> HRESULT {
        {
            const std::shared_lock lock(m_lockMedia);
            if (VideoSize() == 0) return kErrorEmpty;
            if (IsRgbFormat(m_props.vidProps.fccType)) {
                HBITMAP bitmap = nullptr;
                const HRESULT hr = MakeBitmap(m_props.vidProps, VideoData(), VideoSize(), &bitmap);
                *_pcpHBitmap = AddressOf(bitmap);
                return hr;
            }
        }
        // The factory reads this frame, so that no lock may be held.
        ComPtr<IZFrame_I> clone;
        const HRESULT hr = CloneForImage(clone);
        return FAILED(hr) ? hr : clone->FrameVideoGetHbitmap(_pcpHBitmap);
    });
}

HRESULT CCoZFrame2::FrameVideoSaveToFile(BSTR _bsFileName) {
    return Guarded([&]() -> HRESULT {
        {
            const std::shared_lock lock(m_lockMedia);
            if (VideoSize() == 0) return kErrorEmpty;
            if (IsRgbFormat(m_props.vidProps.fccType))
                return Save(m_props.vidProps, VideoData(), VideoSize(), ViewOf(_bsFileName));
        }
        ComPtr<IZFrame_I> clone;
        const HRESULT hr = CloneForImage(clone);
        return FAILED(hr) ? hr : clone->FrameVideoSaveToFile(_bsFileName);
    });
}

}    // namespace zck
