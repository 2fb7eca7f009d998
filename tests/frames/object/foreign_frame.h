// Frames that are not ours, as hosts bring them: one for each family. Also the stand-in for a frame of another process.
#pragma once

#include <cstring>
#include <vector>

#include "frames/views/f_frame.h"
#include "frames/views/frame_i.h"
#include "platform/com_ptr.h"
#include "platform/object.h"
#include "platform/process.h"
#include "platform/text.h"

namespace zck::test {

/// Every operation is there and refuses.
template <class Base>
class RefusesQuorvex : public Base {
public:
    HRESULT Z_STDCALL FrameAVPropsGet(Z_AV_PROPS *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAVPropsSet(Z_AV_PROPS *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameTimeGet(Z_TIME *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameTimeSet(Z_TIME *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameVideoGetHbitmap(int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameVideoSaveToFile(BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAudioSaveToFile(BSTR, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameDataGetByIndex(int32_t, int32_t *, int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameDataGet(int32_t, int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameDataSet(int32_t, int32_t, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameClone(IZFrame **, eZFrameClone, eZFCC) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCut(int32_t, tagRECT *, IZFrame **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameConvert(Z_VID_PROPS *, IZFrame **, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameOverlay(IZFrame *, int32_t, int32_t, double, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameRelease() override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameBufferIdGet(int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAudioCopyGet(int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameVideoCopyGet(int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameVideoOffsetGet(int32_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAudioReset(int32_t, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameInfoGet(Z_TIME *, Z_AV_PROPS *, int32_t *, int32_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameInfoPtrGet(Z_TIME *, Z_AV_PROPS *, int32_t *, int64_t *, int32_t *, int64_t *) override {
        return E_NOTIMPL;
    }
    HRESULT Z_STDCALL FrameDataPack(int32_t, int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameDataCopyFrom(IZFrame *, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAudioResetFwd(int32_t, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAudioForward(BSTR, int32_t, int32_t, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFSaveToStream(IUnknown **, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAddToStream(IUnknown *, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFLoadFromStream(IUnknown *, int32_t) override { return E_NOTIMPL; }

protected:
    void *InterfaceFind(REFIID riid) noexcept override {
        return riid == ZIidOf<IZFrame>() ? static_cast<IZFrame *>(this) : nullptr;
    }
};

template <class Base>
class RefusesTessilu : public Base {
public:
    HRESULT Z_STDCALL ZFProcessIdGet(uint32_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAVPropsGet(Z_AV_PROPS *, int32_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAVPropsSet(Z_AV_PROPS *, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFTimeGet(Z_TIME *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFTimeSet(Z_TIME *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFFlagsTest(eZFrameFlags, int32_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFInfoGet(ZF_INFO *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioGetBytes(int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioChannelGet(int32_t, int64_t, int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioChannelsCommit() override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioSamplesSet(Z_AUD_PROPS *, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioSet(Z_AUD_PROPS *, int32_t, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioAdd(IZFFrame *, int32_t *, int32_t *, int32_t, double, double, int32_t) override {
        return E_NOTIMPL;
    }
    HRESULT Z_STDCALL ZFAudioMix(IZFFrame *, double, double, int32_t, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioCopyTo(BSTR, IZFFrame *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioSaveToFile(BSTR, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioFromFile(BSTR, int32_t, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAudioGain(BSTR, double, double) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFVideoGetBytes(int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFVideoGetHbitmap(int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFVideoSaveToFile(BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFCut(int32_t, tagRECT *, IZFFrame **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFClone(IZFFrame **, eZFrameClone, eZFCC) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFOverlay(IZFFrame *, IZFFrame *, int32_t, int32_t, double, BSTR, int64_t, int32_t) override {
        return E_NOTIMPL;
    }
    HRESULT Z_STDCALL ZFConvert(Z_AV_PROPS *, IZFFrame **, int32_t *, BSTR, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFResize(eZFCC, int32_t, int32_t, int32_t, IZFFrame **, BSTR, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFTransition(IZFFrame *, IZFFrame **, double, int64_t, BSTR, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFDataGetByIndex(int32_t, BSTR *, int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFDataGet(BSTR, int32_t *, int64_t *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFDataSet(BSTR, int32_t, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFObjectGetByIndex(int32_t, BSTR *, IUnknown **, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFObjectGet(BSTR, IUnknown **, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFObjectSet(BSTR, IUnknown *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFTextGetByIndex(int32_t, BSTR *, BSTR *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFTextGet(BSTR, BSTR *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFTextSet(BSTR, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFSaveAll(int32_t *, int64_t *, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFLoadAll(int32_t, int64_t, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFAsyncWait() override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFPrint(BSTR, double, PrintRect *, uint32_t, BSTR, int64_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL ZFOverlayRect(IZFFrame *, IZFFrame *, PrintRect *, int32_t, double, BSTR, int64_t) override {
        return E_NOTIMPL;
    }
};

using RefusingQuorvex = RefusesQuorvex<CoObject<IZFrame_I>>;
using RefusingTessilu = RefusesTessilu<CoObject<IZFFrame>>;

/// What a foreign frame answers.
struct ForeignState {
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    std::vector<uint8_t> video;
    std::vector<uint8_t> audio;
    uint32_t process = CurrentProcessId();
    int64_t section = 0;
    int32_t offset = 0;
    int32_t videoSize = 0;    ///< told in place of the true one, when not 0
    HRESULT infoStatus = S_OK;
    std::vector<uint8_t> packed;
    std::vector<uint8_t> block;    ///< its stored form
    HRESULT blockStatus = S_OK;
    int32_t blockFlags = 0;    ///< as they were asked for
    int pixelReads = 0;

    bool Local() const { return process == CurrentProcessId(); }
    int32_t VideoSize() const { return videoSize != 0 ? videoSize : static_cast<int32_t>(video.size()); }
    int32_t AudioSize() const { return static_cast<int32_t>(audio.size()); }
    static int64_t Address(const std::vector<uint8_t> &bytes) {
        return bytes.empty() ? 0 : static_cast<int64_t>(reinterpret_cast<uintptr_t>(bytes.data()));
    }
    static HRESULT CopyOut(const std::vector<uint8_t> &bytes, int32_t *size, int64_t *block) {
        *size = static_cast<int32_t>(bytes.size());
        *block = 0;
        if (bytes.empty()) return S_OK;
        void *copy = CoTaskMemAlloc(bytes.size());
        std::memcpy(copy, bytes.data(), bytes.size());
        *block = static_cast<int64_t>(reinterpret_cast<uintptr_t>(copy));
        return S_OK;
    }
};

class ForeignQuorvex final : public RefusingQuorvex {
public:
    explicit ForeignQuorvex(ForeignState &state) : m_state(state) {}

    HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *size, int64_t *address) override {
        ++m_state.pixelReads;
        if (size != nullptr) *size = m_state.VideoSize();
        if (address != nullptr) *address = ForeignState::Address(m_state.video);
        return S_OK;
    }
    HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *size, int64_t *address) override {
        *size = m_state.AudioSize();
        *address = ForeignState::Address(m_state.audio);
        return S_OK;
    }
    HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *process) override {
        *process = m_state.process;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameBufferIdGet(int64_t *section) override {
        *section = m_state.section;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameVideoOffsetGet(int32_t *offset) override {
        *offset = m_state.offset;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameAudioCopyGet(int32_t *size, int64_t *block) override {
        return ForeignState::CopyOut(m_state.audio, size, block);
    }
    HRESULT Z_STDCALL FrameInfoGet(Z_TIME *time, Z_AV_PROPS *props, int32_t *video, int32_t *audio) override {
        if (time != nullptr) *time = m_state.time;
        if (props != nullptr) *props = m_state.props;
        if (video != nullptr) *video = m_state.VideoSize();
        if (audio != nullptr) *audio = m_state.AudioSize();
        return m_state.infoStatus;
    }
    HRESULT Z_STDCALL FrameInfoPtrGet(Z_TIME *time, Z_AV_PROPS *props, int32_t *audio, int64_t *audioAt, int32_t *video,
                                      int64_t *videoAt) override {
        ++m_state.pixelReads;
        *audioAt = ForeignState::Address(m_state.audio);
        *videoAt = ForeignState::Address(m_state.video);
        return FrameInfoGet(time, props, video, audio);
    }
    HRESULT Z_STDCALL FrameDataPack(int32_t, int32_t *size, int64_t *block) override {
        return ForeignState::CopyOut(m_state.packed, size, block);
    }

private:
    ForeignState &m_state;
};

class ForeignTessilu final : public RefusingTessilu {
public:
    explicit ForeignTessilu(ForeignState &state) : m_state(state) {}

    HRESULT Z_STDCALL ZFProcessIdGet(uint32_t *process) override {
        *process = m_state.process;
        return S_OK;
    }
    HRESULT Z_STDCALL ZFInfoGet(ZF_INFO *info) override {
        *info = {};
        info->llSectionId = m_state.section;
        info->time = m_state.time;
        info->avProps = m_state.props;
        info->cbAudio = m_state.AudioSize();
        info->cbVideo = m_state.VideoSize();
        info->pbVideo = ForeignState::Address(m_state.video);
        info->pbAudio = ForeignState::Address(m_state.audio);
        info->nProcessId = m_state.process;
        info->nDataCount = 2;
        info->nObjectCount = 3;
        info->nTextCount = 1;
        return m_state.infoStatus;
    }
    HRESULT Z_STDCALL ZFDataGetByIndex(int32_t index, BSTR *name, int32_t *size, int64_t *data) override {
        if (index != 0) return E_FAIL;
        *size = 0;
        *data = 42;
        return BstrCopyTo(ZCK_TEXT("a long name"), name);
    }
    HRESULT Z_STDCALL ZFTextGetByIndex(int32_t, BSTR *name, BSTR *text) override {
        BstrCopyTo(ZCK_TEXT("title"), name);
        return BstrCopyTo(ZCK_TEXT("words"), text);
    }
    /// The second of three fails.
    HRESULT Z_STDCALL ZFObjectGetByIndex(int32_t index, BSTR *name, IUnknown **object, int32_t) override {
        if (index == 1) return E_FAIL;
        AddRef();
        *object = static_cast<IZFFrame *>(this);
        return BstrCopyTo(index == 0 ? ZCK_TEXT("first") : ZCK_TEXT("third"), name);
    }
    HRESULT Z_STDCALL ZFSaveAll(int32_t *size, int64_t *block, int32_t flags) override {
        m_state.blockFlags = flags;
        if (FAILED(m_state.blockStatus)) return m_state.blockStatus;
        return ForeignState::CopyOut(m_state.block, size, block);
    }

private:
    ForeignState &m_state;
};

/// A frame of another process with both views, as this library's own have them.
class ForeignBoth final : public RefusesTessilu<RefusesQuorvex<CoObject<IZFrame_I, IZFFrame>>> {
public:
    explicit ForeignBoth(ForeignState &state) : m_state(state) {}

    HRESULT Z_STDCALL ZFProcessIdGet(uint32_t *process) override {
        *process = m_state.process;
        return S_OK;
    }
    HRESULT Z_STDCALL ZFInfoGet(ZF_INFO *info) override {
        *info = {};
        info->nProcessId = m_state.process;
        return m_state.infoStatus;
    }
    HRESULT Z_STDCALL FrameVideoOffsetGet(int32_t *offset) override {
        *offset = m_state.offset;
        return S_OK;
    }
    HRESULT Z_STDCALL ZFSaveAll(int32_t *size, int64_t *block, int32_t) override {
        return ForeignState::CopyOut(m_state.block, size, block);
    }

private:
    ForeignState &m_state;
};

template <class Foreign, class Interface>
ComPtr<Interface> ForeignCreate(ForeignState &state) {
    ComPtr<Interface> frame;
    CreateObject<Foreign>(nullptr, ZIidOf<Interface>(), frame.PutVoid(), state);
    return frame;
}

}    // namespace zck::test
