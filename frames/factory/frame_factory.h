// `CCoZFFactory_I`: the one object that makes frames.
#pragma once

#include "frames/memory/ipc_buffer_heap.h"
#include "frames/object/frame.h"
#include "frames/object/pixel_work.h"
#include "frames/views/frame_shell.h"
#include "imaging/convert/frames_converter.h"
#include "platform/worker_pool.h"

namespace zck {

/// Owns the pool of sections. Every frame holds a reference on its factory, so that it outlives all of them. Any thread may
/// call it. Converting clones run one at a time, under `m_csConvert`, and so do the conversions of `m_converter`; nothing
/// inside of them calls the factory again.
class CCoZFFactory_I final : public CoObject<IZFrames_I, IZFFactory, IZFrameShell> {
public:
    // IZFrames
    HRESULT Z_STDCALL FrameLocal(IUnknown *_pFrame, IZFrame **_ppFrameRes, int32_t _bForce) override;
    HRESULT Z_STDCALL FrameCreate(int32_t _cbVideo, IUnknown *_pKeeper, IZFrame **_ppFrameRes) override;
    HRESULT Z_STDCALL FrameCreateFromProps(Z_VID_PROPS *_pVidProps, int64_t _pbVideo, IZFrame **_ppFrameRes,
                                           BSTR _bsProps) override;
    HRESULT Z_STDCALL FrameCreateFromFile(BSTR _bsFileNameOrColor, IZFrame **_ppFrameRes, BSTR _bsProps) override;
    HRESULT Z_STDCALL FrameCreateFromHbitmap(int64_t _pHBitmap, IZFrame **_ppFrameRes, BSTR _bsProps) override;
    HRESULT Z_STDCALL FrameCreateReserved() override;

    // IZFrames_I
    HRESULT Z_STDCALL FrameAlloc(int32_t _cbVideo, int32_t _cbAudio, IUnknown *_pKeeper, IZFrame_I **_ppFrameRes) override;
    HRESULT Z_STDCALL FrameCloneConvert(IZFrame *_pFrame, IZFrame_I **_ppFrameRes, eZFrameClone _eCloneType,
                                        eZFCC _fccPixelFormat) override;
    HRESULT Z_STDCALL FramesConvert(IZFrame *_pFrame, IZFrame *_pFrameSecond, Z_VID_PROPS *_pVidPropsDest,
                                    IZFrame **_ppFrameRes, BSTR _bsPropsList) override;
    HRESULT Z_STDCALL BufferGet(int32_t _cbSize, IPCBuffer **_ppBuffer) override;
    HRESULT Z_STDCALL BufferReturn(IPCBuffer *_pBuffer) override;
    HRESULT Z_STDCALL FrameMakeLocal(IZFrame *_pFrame, IZFrame_I **_ppFrameRes, int32_t _bForce) override;
    HRESULT Z_STDCALL FrameCloneObject(IUnknown *_pObject, IZFrame **_ppFrameRes, eZFrameClone _eCloneType,
                                       eZFCC _fccPixelFormat) override;

    // IZFFactory
    HRESULT Z_STDCALL ZFFrameLocal(IUnknown *_pFrame, IZFFrame **_ppFrameRes, int32_t _bForce) override;
    HRESULT Z_STDCALL ZFCloneConvert(IUnknown *_pFrame, IZFFrame **_ppFrameRes, eZFrameClone _eCloneType,
                                     eZFCC _fccPixelFormat) override;
    HRESULT Z_STDCALL ZFFrameCreate(Z_AV_PROPS *_pProps, int64_t _pbVideo, int32_t _cbAudio, int64_t _pbAudio,
                                    IZFFrame **_ppFrameRes) override;
    HRESULT Z_STDCALL ZFFrameCreateFromFile(BSTR _bsFileNameOrColor, IZFFrame **_ppFrameRes, BSTR _bsProps) override;
    HRESULT Z_STDCALL ZFFrameCreateFromHbitmap(int64_t _pHBitmap, IZFFrame **_ppFrameRes, BSTR _bsProps) override;
    HRESULT Z_STDCALL ZFFrameWrap(Z_VID_PROPS *_pVidProps, int32_t _cbVideo, int64_t _pbVideo, IUnknown *_pKeeper,
                                  IZFFrame **_ppFrameRes) override;

    // IZFrameShell
    HRESULT Z_STDCALL CloneShell(IZFrame *_pFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat, IZFrame_I **_ppClone,
                                 IZFrame_I **_ppLocal, ZF_SHELL *_pShell) override;
    HRESULT Z_STDCALL UnwrittenAlloc(int32_t _cbVideo, IZFrame_I **_ppFrameRes) override;

protected:
    void *InterfaceFind(REFIID riid) noexcept override;

private:
    using FramePtr = ComPtr<CCoZFrame2>;

    struct ConvertJob : PixelJob {
        ComPtr<IPCBuffer> sourceSection;    // held until the work is done
        bool bConvert = false;
    };

    HRESULT AllocUnwritten(int32_t video, int32_t audio, FramePtr &frame);
    HRESULT CreateFromProps(const Z_VID_PROPS *props, int64_t pixels, TextView options, FramePtr &out);
    HRESULT CreateFromFile(TextView name, TextView options, FramePtr &out);
    // For both families: `Source` is `IZFrame_I` or `IZFFrame`.
    template <class Source>
    HRESULT MakeLocal(Source *source, bool force, ComPtr<Source> &out);
    template <class Source>
    HRESULT CloneAs(Source *source, int32_t type, eZFCC fcc, FramePtr &out);
    template <class Source>
    HRESULT CloneConverted(Source *source, eZFCC fcc, FramePtr &out);
    template <class Source>
    HRESULT ConvertNow(Source *local, eZFCC fcc, CCoZFrame2 &clone, ConvertJob &job, bool &fits);
    template <class Source>
    HRESULT ConvertBegin(Source *local, eZFCC fcc, FramePtr &clone, ConvertJob &job);

    static HRESULT ConvertPlan(const FramePixels &pixels, eZFCC fcc, Z_VID_PROPS &props, ConvertJob &job);
    HRESULT ShellBegin(IZFrame_I *local, int32_t type, eZFCC fcc, FramePtr &clone, ConvertJob &job);

    IPCBufferHeap m_heap;
    CriticalSection m_csConvert;
    FramesConverter m_converter;
    const std::shared_ptr<WorkerPool> m_workers = WorkerPool::Shared();    // held so that its threads stay
};

}    // namespace zck
