// Clones in other formats, and frames of other processes made local.
#include <algorithm>
#include <mutex>

#include "frames/factory/frame_factory.h"
#include "frames/media/video_props.h"
#include "frames/object/address.h"
#include "platform/process.h"

namespace zck {
namespace {

template <class Interface>
HRESULT HandOut(HRESULT hr, ComPtr<CCoZFrame2> &frame, Interface **out) {
    if (SUCCEEDED(hr)) *out = frame.Detach();
    return hr;
}

HRESULT ProcessOf(IZFrame_I *frame, uint32_t &process) { return frame->FrameProcessIdGet(&process); }
HRESULT ProcessOf(IZFFrame *frame, uint32_t &process) { return frame->ZFProcessIdGet(&process); }

HRESULT PictureOf(IZFrame_I *frame, Z_VID_PROPS &props, int32_t &size) {
    Z_AV_PROPS all = {};
    const HRESULT hr = frame->FrameInfoGet(nullptr, &all, &size, nullptr);
    props = all.vidProps;
    return hr;
}

HRESULT PictureOf(IZFFrame *frame, Z_VID_PROPS &props, int32_t &size) {
    ZF_INFO info = {};
    const HRESULT hr = frame->ZFInfoGet(&info);
    props = info.avProps.vidProps;
    size = info.cbVideo;
    return hr;
}

HRESULT CloneAlong(IZFrames_I *factory, IZFrame_I *source, int32_t type, ComPtr<CCoZFrame2> &out) {
    return CCoZFrame2::CloneQuorvex(factory, source, type, 0, out);
}

HRESULT CloneAlong(IZFrames_I *factory, IZFFrame *source, int32_t type, ComPtr<CCoZFrame2> &out) {
    return CCoZFrame2::CloneTessilu(factory, source, type, 0, out);
}

// Pixels of a frame of this process, held against reuse where that is known.
HRESULT PixelsOf(IZFrame_I *frame, FramePixels &pixels) {
    if (const auto own = QueryFor<CCoZFrame2>(frame)) {
        pixels = own->PixelsGet();
        return S_OK;
    }
    int32_t size = 0;
    int64_t address = 0;
    const HRESULT hr = frame->FrameVideoGetBytes(&size, &address);
    pixels.data = PointerFrom<>(address);
    pixels.size = FAILED(hr) || pixels.data == nullptr ? 0 : static_cast<uint32_t>(std::max(size, 0));
    return hr;
}

}    // namespace

template <class Source>
HRESULT CCoZFFactory_I::MakeLocal(Source *source, bool force, ComPtr<Source> &out) {
    uint32_t process = 0;
    HRESULT hr = ProcessOf(source, process);
    if (FAILED(hr)) return hr;
    if (process == CurrentProcessId() && !force) {
        out = source;
        return S_OK;
    }
    FramePtr clone;
    hr = CloneAlong(this, source, eZFC_Reference, clone);
    return HandOut(hr, clone, out.Put());
}

HRESULT CCoZFFactory_I::FrameMakeLocal(IZFrame *_pFrame, IZFrame_I **_ppFrameRes, int32_t _bForce) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pFrame == nullptr || _ppFrameRes == nullptr) return E_INVALIDARG;
    const auto source = QueryFor<IZFrame_I>(_pFrame);
    if (!source) return E_NOINTERFACE;
    ComPtr<IZFrame_I> local;
    const HRESULT hr = MakeLocal(source.get(), _bForce != 0, local);
    *_ppFrameRes = local.Detach();
    return hr;
}

HRESULT CCoZFFactory_I::FrameLocal(IUnknown *_pFrame, IZFrame **_ppFrameRes, int32_t _bForce) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pFrame == nullptr || _ppFrameRes == nullptr) return E_POINTER;
    const auto source = QueryFor<IZFrame_I>(_pFrame);
    if (!source) return E_NOINTERFACE;
    ComPtr<IZFrame_I> local;
    const HRESULT hr = MakeLocal(source.get(), _bForce != 0, local);
    *_ppFrameRes = local.Detach();
    return hr;
}

HRESULT CCoZFFactory_I::ZFFrameLocal(IUnknown *_pFrame, IZFFrame **_ppFrameRes, int32_t _bForce) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pFrame == nullptr || _ppFrameRes == nullptr) return E_POINTER;
    if (const auto tessilu = QueryFor<IZFFrame>(_pFrame)) {
        ComPtr<IZFFrame> local;
        const HRESULT hr = MakeLocal(tessilu.get(), _bForce != 0, local);
        *_ppFrameRes = local.Detach();
        return hr;
    }
    // A frame of the other family becomes one of ours, which has both views.
    const auto source = QueryFor<IZFrame_I>(_pFrame);
    if (!source) return E_NOINTERFACE;
    FramePtr clone;
    const HRESULT hr = CCoZFrame2::CloneQuorvex(this, source.get(), eZFC_Reference, 0, clone);
    return HandOut(hr, clone, _ppFrameRes);
}

// Fills the source's side and both descriptions of a job in; `props` comes with the source's and goes with the target's.
HRESULT CCoZFFactory_I::ConvertPlan(const FramePixels &pixels, eZFCC fcc, Z_VID_PROPS &props, ConvertJob &job) {
    job.sourceProps = props;
    job.source = pixels.data;
    job.sourceSize = pixels.data != nullptr ? pixels.size : 0;
    job.sourceSection = pixels.section;
    props = ConvertedRecord(job.sourceProps, fcc);
    job.targetProps = props;
    const int32_t size = FrameBufferSize(&props);
    if (size < 1 || !PixelsFit(props, static_cast<uint32_t>(size))) return kVfwEInvalidMediaType;
    if (!PixelsFit(job.sourceProps, job.sourceSize)) return kVfwEInvalidMediaType;
    // Before the buffer: the size that such a record states is not one that pixels stand for.
    if (!HasRows(job.sourceProps)) return E_UNEXPECTED;
    job.targetSize = static_cast<uint32_t>(size);
    return S_OK;
}

// Makes the clone with the source's description and sound, the target's record, and a buffer for the target's pixels.
template <class Source>
HRESULT CCoZFFactory_I::ConvertBegin(Source *local, eZFCC fcc, FramePtr &clone, ConvertJob &job) {
    FramePixels pixels;
    HRESULT hr = CCoZFrame2::Create(this, clone);
    if (SUCCEEDED(hr)) hr = clone->MediaTakeWhole(local, pixels);
    if (SUCCEEDED(hr)) hr = ConvertPlan(pixels, fcc, clone->Props().vidProps, job);
    if (SUCCEEDED(hr)) hr = clone->VideoAlloc(job.targetSize);
    if (FAILED(hr)) return hr;
    const FramePixels target = clone->Pixels();
    job.target = target.data;
    job.bZeroed = target.section->IsFresh();
    return S_OK;
}

// Converts the pixels of one moment: a frame of this process is taken again, and no writer of it comes in between. `fits` tells
// whether the clone's buffer is still of the right size; otherwise nothing was done.
template <class Source>
HRESULT CCoZFFactory_I::ConvertNow(Source *local, eZFCC fcc, CCoZFrame2 &clone, ConvertJob &job, bool &fits) {
    const std::lock_guard lock(m_csConvert);
    fits = true;
    const auto own = QueryFor<CCoZFrame2>(local);
    if (!own) return PixelsConvert(job);
    const uint32_t room = job.targetSize;
    FramePixels pixels;
    return clone.MediaTakeFor(*own, true, pixels, [&] {
        const HRESULT hr = ConvertPlan(pixels, fcc, clone.Props().vidProps, job);
        fits = FAILED(hr) || job.targetSize == room;
        return SUCCEEDED(hr) && fits ? PixelsConvert(job) : hr;
    });
}

// The same rule for both families; their roads differ in what a plain clone takes over.
template <class Source>
HRESULT CCoZFFactory_I::CloneAs(Source *source, int32_t type, eZFCC fcc, FramePtr &out) {
    return Guarded([&] {
        CloneWork work = CloneWork::Plain;
        int32_t size = 0;
        if (fcc != eZFCC_Default) {
            Z_VID_PROPS props = {};
            const HRESULT hr = PictureOf(source, props, size);
            if (FAILED(hr)) return hr;
            work = CloneWorkOf(props, size, fcc);
        }
        FramePtr clone;
        if (work != CloneWork::Convert) {
            const HRESULT hr = CloneAlong(this, source, type, clone);
            if (FAILED(hr)) return hr;
            Z_VID_PROPS &props = clone->Props().vidProps;
            // A frame of ours may have been turned or named anew since.
            if (QueryFor<CCoZFrame2>(source)) work = CloneWorkOf(props, size, fcc);
            if (work == CloneWork::Relabel) props.fccType = fcc;
        }
        if (work == CloneWork::Convert) return CloneConverted(source, fcc, out);
        out.Swap(clone);
        return S_OK;
    });
}

// Pixels and sound always come along, whatever the type says; text attributes and objects do not.
template <class Source>
HRESULT CCoZFFactory_I::CloneConverted(Source *source, eZFCC fcc, FramePtr &out) {
    ComPtr<Source> local;
    FramePtr clone;
    HRESULT hr = MakeLocal(source, false, local);
    for (bool fits = false; SUCCEEDED(hr) && !fits;) {
        ConvertJob job;
        hr = ConvertBegin(local.get(), fcc, clone, job);
        if (SUCCEEDED(hr)) hr = ConvertNow(local.get(), fcc, *clone, job, fits);
    }
    if (SUCCEEDED(hr)) hr = clone->DataTakeFrom(local.get());
    if (SUCCEEDED(hr)) out.Swap(clone);
    return hr;
}

HRESULT CCoZFFactory_I::FrameCloneConvert(IZFrame *_pFrame, IZFrame_I **_ppFrameRes, eZFrameClone _eCloneType,
                                          eZFCC _fccPixelFormat) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pFrame == nullptr || _ppFrameRes == nullptr) return E_INVALIDARG;
    const auto source = QueryFor<IZFrame_I>(_pFrame);
    if (!source) return E_NOINTERFACE;
    FramePtr clone;
    const HRESULT hr = CloneAs(source.get(), _eCloneType, _fccPixelFormat, clone);
    return HandOut(hr, clone, _ppFrameRes);
}

HRESULT CCoZFFactory_I::FrameCloneObject(IUnknown *_pObject, IZFrame **_ppFrameRes, eZFrameClone _eCloneType,
                                         eZFCC _fccPixelFormat) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pObject == nullptr || _ppFrameRes == nullptr) return E_INVALIDARG;
    const auto source = QueryFor<IZFrame_I>(_pObject);
    if (!source) return E_NOINTERFACE;
    FramePtr clone;
    const HRESULT hr = CloneAs(source.get(), _eCloneType, _fccPixelFormat, clone);
    return HandOut(hr, clone, _ppFrameRes);
}

HRESULT CCoZFFactory_I::ZFCloneConvert(IUnknown *_pFrame, IZFFrame **_ppFrameRes, eZFrameClone _eCloneType,
                                       eZFCC _fccPixelFormat) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pFrame == nullptr || _ppFrameRes == nullptr) return E_INVALIDARG;
    FramePtr clone;
    HRESULT hr = E_NOINTERFACE;
    if (const auto tessilu = QueryFor<IZFFrame>(_pFrame)) {
        hr = CloneAs(tessilu.get(), _eCloneType, _fccPixelFormat, clone);
    } else if (const auto quorvex = QueryFor<IZFrame_I>(_pFrame)) {
        hr = CloneAs(quorvex.get(), _eCloneType, _fccPixelFormat, clone);
    }
    return HandOut(hr, clone, _ppFrameRes);
}

// An unfilled clone for a caller that writes the pixels itself. What cannot be given that way comes as a whole clone.
HRESULT CCoZFFactory_I::CloneShell(IZFrame *_pFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat, IZFrame_I **_ppClone,
                                   IZFrame_I **_ppLocal, ZF_SHELL *_pShell) {
    if (_ppClone != nullptr) *_ppClone = nullptr;
    if (_ppLocal != nullptr) *_ppLocal = nullptr;
    if (_pFrame == nullptr || _ppClone == nullptr || _ppLocal == nullptr || _pShell == nullptr) return E_INVALIDARG;
    *_pShell = {};
    const auto source = QueryFor<IZFrame_I>(_pFrame);
    if (!source) return E_NOINTERFACE;
    return Guarded([&] {
        ComPtr<IZFrame_I> local;
        FramePtr clone;
        ConvertJob job;
        HRESULT hr = MakeLocal(source.get(), false, local);
        if (SUCCEEDED(hr)) hr = ShellBegin(local.get(), _eCloneType, _fccPixelFormat, clone, job);
        if (FAILED(hr)) return hr;
        if (clone) {
            *_pShell = {job.sourceProps,
                        job.targetProps,
                        AddressOf(job.source),
                        AddressOf(job.target),
                        static_cast<int32_t>(job.sourceSize),
                        static_cast<int32_t>(job.targetSize),
                        job.bConvert ? 1 : 0};
            *_ppLocal = local.Detach();
        } else {
            hr = CloneAs(local.get(), _eCloneType, _fccPixelFormat, clone);
            if (FAILED(hr)) return hr;
            hr = S_FALSE;
        }
        *_ppClone = clone.Detach();
        return hr;
    });
}

// No clone comes when there is nothing for the caller to write.
HRESULT CCoZFFactory_I::ShellBegin(IZFrame_I *local, int32_t type, eZFCC fcc, FramePtr &clone, ConvertJob &job) {
    Z_VID_PROPS props = {};
    int32_t size = 0;
    HRESULT hr = PictureOf(local, props, size);
    if (FAILED(hr) || size <= 0) return hr;
    const CloneWork work = CloneWorkOf(props, size, fcc);
    if (work == CloneWork::Convert) {
        hr = ConvertBegin(local, fcc, clone, job);
        if (SUCCEEDED(hr)) hr = clone->DataTakeFrom(local);
        job.bConvert = true;
        return hr;
    }
    if ((type & eZFC_Video) == 0) return S_OK;
    FramePtr made;
    hr = CCoZFrame2::CloneQuorvex(this, local, type & ~(eZFC_Video | eZFC_VideoRef), 0, made);
    if (FAILED(hr)) return hr;
    FramePixels pixels;
    hr = PixelsOf(local, pixels);
    job.sourceProps = made->Props().vidProps;
    if (FAILED(hr) || pixels.size == 0 || !PixelsFit(job.sourceProps, pixels.size)) return hr;
    if (FAILED(made->VideoAlloc(pixels.size))) return S_OK;
    if (work == CloneWork::Relabel) made->Props().vidProps.fccType = fcc;
    job.targetProps = made->Props().vidProps;
    job.source = pixels.data;
    job.target = made->Pixels().data;
    job.sourceSize = job.targetSize = pixels.size;
    clone.Swap(made);
    return S_OK;
}

}    // namespace zck
