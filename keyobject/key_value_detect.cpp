// The detection of a key on the reference frame.
#include <algorithm>

#include "frames/factory/factory.h"
#include "keyobject/block_dump.h"
#include "keyobject/block_picture.h"
#include "keyobject/block_scan.h"
#include "keyobject/key_options.h"
#include "keyobject/key_value.h"

namespace zck {
namespace {

struct DetectOptions {
    KeySpace space;
    int32_t maxKeys;
    BlockScan scan;
};

/// The distance limit between keys, from a number of steps that is cut; below one step there is none.
double DiffOf(double steps) {
    constexpr double kStep = 0.015;
    if (!(steps >= 1.0)) return 0.0;
    return static_cast<int32_t>(std::min<double>(steps, INT32_MAX)) * kStep;
}

DetectOptions DetectOptionsOf(const KeyOptions &options) {
    DetectOptions detect = {};
    detect.space = options.Space(ZCK_TEXT("type"), ZCK_TEXT("detect.type")).value_or(KeySpace::Hls);
    detect.maxKeys = options.Int(ZCK_TEXT("max_keys"), ZCK_TEXT("detect.max_keys"), 0);
    detect.scan.blocks = options.Int(ZCK_TEXT("blocks"), ZCK_TEXT("detect.blocks"), 48);
    detect.scan.threshold = options.Int(ZCK_TEXT("threshold"), ZCK_TEXT("detect.threshold"), 16);
    detect.scan.diff = DiffOf(options.Float(ZCK_TEXT("key_diff"), ZCK_TEXT("detect.key_diff"), 1.0));
    detect.scan.paint = options.Bool(ZCK_TEXT("show_blocks"), true);
    return detect;
}

}    // namespace

HRESULT CCoZKeyValue::KeyDetect(BSTR _bsProps, IUnknown **_ppZFrameRes) {
    return Edit(_ppZFrameRes, [&]() -> HRESULT {
        const FrameSet frames = m_frames.Now();
        if (!frames.keyingArgb) return E_INVALIDARG;
        KeyOptions options(m_props);
        HRESULT hr = options.Parse(_bsProps);
        if (FAILED(hr)) return hr;
        const DetectOptions detect = DetectOptionsOf(options);
        if (detect.scan.blocks == 0) return E_INVALIDARG;
        hr = m_work.Build(detect.space, frames.keyingArgb.get(), frames.keyingSerial);
        if (FAILED(hr)) return hr;

        KeyStep step = StepNow();
        m_history.Save(step);
        step.addRanges.count = 0;
        step.excludeRanges.count = 0;
        RangeSetLimit(step.addRanges, detect.maxKeys);
        ScanBlocks(m_work, detect.scan, &step.addRanges);
        DumpBlocks(m_work);
        if (detect.scan.paint) m_work.Spend();
        if (step.addRanges.count > 0) StepRebuild(step, detect.space);
        StepPut(step);
        return detect.scan.paint ? ShowBlocks(_ppZFrameRes) : Render(_ppZFrameRes);
    });
}

HRESULT CCoZKeyValue::ShowBlocks(IUnknown **out) {
    HRESULT hr = m_factory ? S_OK : FrameFactoryCreate(IID_IZFrames, m_factory.PutVoid());
    ComPtr<IZFrame> picture;
    if (SUCCEEDED(hr)) hr = BlockPicture(m_factory.get(), m_work, &picture);
    return FAILED(hr) ? hr : picture->QueryInterface(IID_IUnknown, reinterpret_cast<void **>(out));
}

}    // namespace zck
