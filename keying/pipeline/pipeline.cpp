#include "keying/pipeline/pipeline.h"

#include <limits>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "keying/pipeline/by_fields.h"
#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"
#include "keying/pipeline/plane_path.h"
#include "keying/pipeline/streaming_path.h"
#include "platform/status.h"

namespace zck {
namespace {

// The frame as rows, if it has a shape for that.
bool KeyRows(const KeyView &image, const KeyPlan &plan, bool fields, bool writeAlpha) {
    if (image.bounds.alphaRow != KeyBounds::kAnyRow || image.bounds.pixelRow != KeyBounds::kAnyRow) return false;
    RowFrame frame = {};
    frame.view = image;
    frame.plan = &plan;
    frame.fields = fields ? 2 : 1;
    frame.combs = frame.fields;
    frame.view.blocks = BlocksOf(image.width, image.stride * frame.fields);
    frame.keyedRows = image.height / frame.fields * frame.fields;
    frame.merge = HasAlpha(image.props->fccType) || writeAlpha;
    if (!StreamingPath::Serves(frame)) return false;
    StreamingPath path;
    path.Start(frame, 1);
    path.MakeEdges(0);
    path.Walk(0);
    return true;
}

}    // namespace

HRESULT CheckProps(const Z_VID_PROPS &props) {
    if (props.nWidth < 0 || props.nRowBytes < 0 || props.nHeight == std::numeric_limits<int32_t>::min()) return E_INVALIDARG;
    return AlphaStride(props) < props.nWidth ? E_INVALIDARG : S_OK;
}

HRESULT KeyImage(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key, bool writeAlpha,
                 const KeyBounds &bounds) {
    if (pixels == nullptr || alpha == nullptr || props == nullptr || key == nullptr) return E_POINTER;
    if (!IsKeyingType(key->eType)) return S_FALSE;
    const HRESULT hr = CheckProps(*props);
    if (FAILED(hr)) return hr;
    return Guarded([&] {
        const KeyPlan plan = KeyPlanMake(*key);
        const KeyView view = MakeView(pixels, alpha, props, AlphaStride(*props), bounds);
        const bool fields = key->nInterlacedVideo > 0;
        if (KeyRows(view, plan, fields, writeAlpha)) return plan.hasAlpha ? S_OK : S_FALSE;
        if (fields)
            return ByFields(pixels, alpha, *props, *key, bounds,
                            [writeAlpha](uint8_t *p, uint8_t *a, const Z_VID_PROPS *field, const CHROMA_KEY_RAW *k,
                                         const KeyBounds &own) { return KeyImage(p, a, field, k, writeAlpha, own); });
        return KeyByPlanes(view, plan, writeAlpha);
    });
}

HRESULT CK_GetAlphaKeyEx3(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key,
                          bool writeAlpha) {
    if (pixels == nullptr || alpha == nullptr || props == nullptr || key == nullptr) return E_POINTER;
    const int64_t rows = RowCount(props->nHeight);
    const KeyBounds bounds{rows * props->nRowBytes, rows * AlphaStride(*props), KeyBounds::kAnyRow, KeyBounds::kAnyRow};
    return KeyImage(pixels, alpha, props, key, writeAlpha, bounds);
}

}    // namespace zck
