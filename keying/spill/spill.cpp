#include "keying/spill/spill.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "keying/kernels/filter_plane.h"
#include "keying/spill/rgb_row.h"
#include "keying/spill/spill_rows.h"
#include "platform/status.h"

namespace zck {
namespace {

class PictureRows : public SpillSource {
public:
    explicit PictureRows(const SpillImage &image) : m_image(image) {}

    const uint8_t *KeyRow(int32_t row, int64_t *bytes) final {
        const int64_t offset = row * m_image.spaceStride;
        *bytes = std::max<int64_t>(std::min(m_image.spaceRow, m_image.spaceBytes - offset), 0);
        return *bytes > 0 ? m_image.space + offset : m_image.space;
    }

protected:
    ~PictureRows() = default;
    const SpillImage &m_image;
};

/// Packed YUV, in place.
class YuvRows final : public PictureRows {
public:
    using PictureRows::PictureRows;

    uint8_t *Open(int32_t row, uint8_t *room) override {
        const int64_t bytes = Room(row);
        if (bytes == RowBytes()) return At(row);
        std::memset(room, 0, static_cast<size_t>(RowBytes()));
        if (bytes > 0) std::memcpy(room, At(row), static_cast<size_t>(bytes));
        return room;
    }
    void Close(int32_t row, uint8_t *pixels) override {
        const int64_t bytes = Room(row);
        if (bytes > 0 && bytes < RowBytes()) std::memcpy(At(row), pixels, static_cast<size_t>(bytes));
    }

private:
    int64_t RowBytes() const { return m_image.props->nWidth / 2 * int64_t{4}; }
    uint8_t *At(int32_t row) const { return m_image.pixels + row * 2 * m_image.stride; }
    int64_t Room(int32_t row) const {
        return std::clamp<int64_t>(m_image.pixelBytes - row * 2 * m_image.stride, 0, RowBytes());
    }
};

/// RGB, through rows of YUY2.
class RgbRows final : public PictureRows {
public:
    using PictureRows::PictureRows;

    HRESULT Prepare() {
        Z_VID_PROPS source = *m_image.props;
        const int64_t rowBytes = (2 * m_image.stride + 3) / 4 * 4;
        if (rowBytes > std::numeric_limits<int32_t>::max()) return E_INVALIDARG;
        // A slice or a field has not the size of its frame's format, and must not be given it.
        source.eVideoFormat = eZVF_Custom;
        // Rows are walked as they stand in memory, and fields are not told apart here.
        source.eInterlace = eZI_Progressive;
        source.nHeight = -static_cast<int32_t>(RowCount(source.nHeight));
        Z_VID_PROPS target = source;
        target.fccType = eZFCC_YUY2;
        target.nRowBytes = static_cast<int32_t>(rowBytes);
        const int64_t wholeBytes = rowBytes * RowCount(target.nHeight);
        // The records of the whole picture say whether it can be done, and how far apart its rows are.
        ConvertPlan whole;
        HRESULT hr = whole.Prepare(&target, wholeBytes, &source, m_image.pixelBytes);
        if (SUCCEEDED(hr)) hr = whole.Prepare(&source, m_image.pixelBytes, &target, wholeBytes);
        if (FAILED(hr)) return hr;
        m_step = whole.SourceOffset(1) - whole.SourceOffset(0);
        return m_convert.Prepare(source.fccType, source.nWidth);
    }

    int64_t RowStep() const { return m_step; }

    uint8_t *Open(int32_t row, uint8_t *room) override {
        m_convert.Into(At(row), room);
        return room;
    }
    void Close(int32_t row, uint8_t *pixels) override { m_convert.Back(pixels, At(row)); }

private:
    uint8_t *At(int32_t row) const { return m_image.pixels + row * m_step; }

    SpillRgbRow m_convert;
    int64_t m_step = 0;
};

int32_t BlocksOf(const SpillImage &image) {
    const int64_t most = std::numeric_limits<int32_t>::max();
    return DistanceBlocks(image.props->nWidth, static_cast<int32_t>(std::min(image.stride, most)));
}

// Rows are written back while others are still to be measured. That is right as long as both run in step; in a picture whose
// rows are no whole pixels they do not, and what is measured is put aside.
bool OutOfStep(const SpillImage &image, int64_t step) {
    const uint8_t *end = image.pixels + image.pixelBytes;
    const bool apart = image.space >= end || image.space + image.spaceBytes <= image.pixels;
    return !apart && (image.space != image.pixels || image.spaceStride != step);
}

HRESULT Walk(const SpillImage &image, const SpillPlan &plan, bool lumaFirst, PictureRows *source) {
    const Z_VID_PROPS &props = *image.props;
    const auto height = static_cast<int32_t>(RowCount(props.nHeight));
    if (props.nWidth < 2 || height < 1) return StatusOf(0x80000000U | static_cast<uint32_t>(kFilterSizeError));
    SpillRows rows;
    const SpillShape shape{props.nWidth, height, BlocksOf(image), image.stride == props.nWidth};
    rows.Start(&plan, shape, lumaFirst, 0, height);
    for (int32_t t = rows.Begin(); t < height + rows.Lag(); ++t) rows.Step(t, source);
    return S_OK;
}

}    // namespace

HRESULT SpillCancel(const SpillImage &image, const SpillPlan &plan) {
    if (plan.count == 0) return S_OK;
    const eZFCC fcc = image.props->fccType;
    if (!IsRgbFormat(fcc) && !IsPlanarFormat(fcc)) {
        YuvRows rows(image);
        const FormatRow *format = FormatFind(fcc);
        return Walk(image, plan, format != nullptr && format->LumaFirst(), &rows);
    }
    SpillImage measured = image;
    RgbRows rows(measured);
    if (image.props->nWidth != 0 && image.props->nHeight != 0) {
        const HRESULT hr = rows.Prepare();
        if (FAILED(hr)) return hr;
    }
    std::vector<uint8_t> aside;
    if (OutOfStep(image, rows.RowStep())) {
        aside.assign(image.space, image.space + image.spaceBytes);
        measured.space = aside.data();
    }
    return Walk(measured, plan, true, &rows);
}

}    // namespace zck
