// A frame that is not one of the library's: it forwards to a real one, and answers only the interfaces that it is told to.
#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "frames/views/frame_i.h"
#include "platform/com_ptr.h"

namespace conformance {

enum class Answers { Nothing, Frame, FrameI };

class ForeignFrame final : public IZFrame_I {
public:
    ForeignFrame(zck::ComPtr<IZFrame> real, Answers answers) : m_real(std::move(real)), m_answers(answers) {
        m_realI = zck::QueryFor<IZFrame_I>(m_real.get());
    }
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        *ppv = nullptr;
        const bool known = riid == ZIidOf<IUnknown>() || (m_answers != Answers::Nothing && riid == ZIidOf<IZFrame>()) ||
                           (m_answers == Answers::FrameI && riid == ZIidOf<IZFrame_I>());
        if (!known) return E_NOINTERFACE;
        *ppv = static_cast<IZFrame_I *>(this);
        AddRef();
        return S_OK;
    }
    ULONG Z_STDCALL AddRef() override { return ++m_refs; }
    ULONG Z_STDCALL Release() override { return --m_refs; }

    HRESULT Z_STDCALL FrameAVPropsGet(Z_AV_PROPS *p) override { return m_real->FrameAVPropsGet(p); }
    HRESULT Z_STDCALL FrameAVPropsSet(Z_AV_PROPS *p) override { return m_real->FrameAVPropsSet(p); }
    HRESULT Z_STDCALL FrameTimeGet(Z_TIME *p) override { return m_real->FrameTimeGet(p); }
    HRESULT Z_STDCALL FrameTimeSet(Z_TIME *p) override { return m_real->FrameTimeSet(p); }
    HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *cb, int64_t *p) override { return m_real->FrameAudioGetBytes(cb, p); }
    HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *cb, int64_t *p) override { return m_real->FrameVideoGetBytes(cb, p); }
    HRESULT Z_STDCALL FrameVideoGetHbitmap(int64_t *p) override { return m_real->FrameVideoGetHbitmap(p); }
    HRESULT Z_STDCALL FrameVideoSaveToFile(BSTR s) override { return m_real->FrameVideoSaveToFile(s); }
    HRESULT Z_STDCALL FrameAudioSaveToFile(BSTR s, int32_t a) override { return m_real->FrameAudioSaveToFile(s, a); }
    HRESULT Z_STDCALL FrameDataGetByIndex(int32_t i, int32_t *f, int32_t *cb, int64_t *p) override {
        return m_real->FrameDataGetByIndex(i, f, cb, p);
    }
    HRESULT Z_STDCALL FrameDataGet(int32_t f, int32_t *cb, int64_t *p) override { return m_real->FrameDataGet(f, cb, p); }
    HRESULT Z_STDCALL FrameDataSet(int32_t f, int32_t cb, int64_t p) override { return m_real->FrameDataSet(f, cb, p); }
    HRESULT Z_STDCALL FrameClone(IZFrame **out, eZFrameClone type, eZFCC fcc) override {
        return m_clone ? m_clone(out, type, fcc) : m_real->FrameClone(out, type, fcc);
    }
    HRESULT Z_STDCALL FrameCut(int32_t f, tagRECT *r, IZFrame **out) override { return m_real->FrameCut(f, r, out); }
    HRESULT Z_STDCALL FrameConvert(Z_VID_PROPS *p, IZFrame **out, BSTR s) override { return m_real->FrameConvert(p, out, s); }
    HRESULT Z_STDCALL FrameOverlay(IZFrame *o, int32_t x, int32_t y, double a, BSTR s) override {
        return m_real->FrameOverlay(o, x, y, a, s);
    }
    HRESULT Z_STDCALL FrameRelease() override { return m_real->FrameRelease(); }

    HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *id) override {
        if (m_process == 0) return m_realI->FrameProcessIdGet(id);
        *id = m_process;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameBufferIdGet(int64_t *id) override {
        if (m_section == 0) return m_realI->FrameBufferIdGet(id);
        *id = m_section;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameAudioCopyGet(int32_t *cb, int64_t *p) override { return m_realI->FrameAudioCopyGet(cb, p); }
    HRESULT Z_STDCALL FrameVideoCopyGet(int32_t *cb, int64_t *p) override { return m_realI->FrameVideoCopyGet(cb, p); }
    HRESULT Z_STDCALL FrameVideoOffsetGet(int32_t *n) override { return m_realI->FrameVideoOffsetGet(n); }
    HRESULT Z_STDCALL FrameAudioReset(int32_t cb, int64_t p) override { return m_realI->FrameAudioReset(cb, p); }
    // Another process's addresses mean nothing here.
    HRESULT Z_STDCALL FrameInfoGet(Z_TIME *t, Z_AV_PROPS *p, int32_t *v, int32_t *a) override {
        return m_realI->FrameInfoGet(t, p, v, a);
    }
    HRESULT Z_STDCALL FrameInfoPtrGet(Z_TIME *t, Z_AV_PROPS *p, int32_t *ca, int64_t *pa, int32_t *cv, int64_t *pv) override {
        return m_realI->FrameInfoPtrGet(t, p, ca, pa, cv, pv);
    }
    HRESULT Z_STDCALL FrameDataPack(int32_t f, int32_t *cb, int64_t *p) override { return m_realI->FrameDataPack(f, cb, p); }
    HRESULT Z_STDCALL FrameDataCopyFrom(IZFrame *f, int32_t m) override { return m_realI->FrameDataCopyFrom(f, m); }
    HRESULT Z_STDCALL FrameAudioResetFwd(int32_t cb, int64_t p) override { return m_realI->FrameAudioResetFwd(cb, p); }
    HRESULT Z_STDCALL FrameAudioForward(BSTR s, int32_t a, int32_t b, int32_t c) override {
        return m_realI->FrameAudioForward(s, a, b, c);
    }
    HRESULT Z_STDCALL ZFSaveToStream(IUnknown **s, int32_t f) override { return m_realI->ZFSaveToStream(s, f); }
    HRESULT Z_STDCALL ZFAddToStream(IUnknown *s, int32_t f) override { return m_realI->ZFAddToStream(s, f); }
    HRESULT Z_STDCALL ZFLoadFromStream(IUnknown *s, int32_t f) override { return m_realI->ZFLoadFromStream(s, f); }

    std::function<HRESULT(IZFrame **, eZFrameClone, eZFCC)> m_clone;    // in place of the real one's
    uint32_t m_process = 0;                                             // the process it pretends to live in
    int64_t m_section = 0;                                              // the section it pretends to have
    std::atomic<ULONG> m_refs{1};

private:
    zck::ComPtr<IZFrame> m_real;
    zck::ComPtr<IZFrame_I> m_realI;
    Answers m_answers;
};

}    // namespace conformance
