#include "imaging/mix/one_size.h"

#include "imaging/colour/convert.h"
#include "imaging/scale/scale_options.h"
#include "platform/status.h"

namespace zck {
namespace {

// One picture that nobody fits.
Z_VID_PROPS Plain(const Z_VID_PROPS &props) {
    Z_VID_PROPS plain = props;
    plain.eScaleType = eZST_None;
    plain.eVideoFormat = eZVF_Custom;
    plain.eInterlace = eZI_Progressive;
    plain.e3DFormat = eZ3D_None;
    return plain;
}

}    // namespace

HRESULT ConvertAtOneSize(const EngineSource &source, uint8_t *dst, int64_t bytes, const Z_VID_PROPS &target) {
    const HRESULT hr = ConvertSameGeometry(source.p, source.bytes, dst, bytes, source.props, &target);
    if (hr != kVfwEInvalidSubtype) return hr;
    return Guarded([&] {
        FieldConverter planes;
        const Z_VID_PROPS from = Plain(*source.props);
        const Z_VID_PROPS to = Plain(target);
        return ConvertFrame2(&planes, {source.p, source.bytes, &from}, {dst, nullptr, nullptr, bytes, &to}, kResizeLinear);
    });
}

}    // namespace zck
