// Frames, their data and their clones.
#include <cstring>
#include <vector>

#include "frames/views/frame_shell.h"
#include "tests/failures/failing_memory.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

/// A frame of a factory of its own, with sound, data and an object.
HRESULT MakeFrame(Z_VID_PROPS props, ComPtr<IZFrame_I> &out) {
    ComPtr<IZFrames_I> factory;
    HRESULT hr = FrameFactoryCreate(ZIidOf<IZFrames_I>(), factory.PutVoid());
    ComPtr<IZFrame> frame;
    if (SUCCEEDED(hr)) hr = factory->FrameCreateFromProps(&props, 0, frame.Put(), nullptr);
    if (FAILED(hr)) return hr;
    const uint8_t bytes[16] = {1, 2, 3};
    out = QueryFor<IZFrame_I>(frame.get());
    hr = out->FrameDataSet(0x41424344, sizeof(bytes), AddressIn(bytes));
    if (SUCCEEDED(hr)) hr = out->FrameAudioReset(400, 0);
    if (FAILED(hr)) return hr;
    Bstr name;
    {
        const FailingMemory::Pause pause;
        name = Bstr(ZCK_TEXT("a name that is longer than a short one"));
    }
    const auto tessilu = QueryFor<IZFFrame>(frame.get());
    hr = tessilu->ZFDataSet(name.get(), sizeof(bytes), AddressIn(bytes));
    if (SUCCEEDED(hr)) hr = tessilu->ZFObjectSet(name.get(), factory.get());
    return hr;
}

HRESULT Prepared(Z_VID_PROPS props, ComPtr<IZFrame_I> &out) {
    const FailingMemory::Pause pause;
    return MakeFrame(props, out);
}

Z_VID_PROPS Small(eZFCC fcc) {
    Z_VID_PROPS props = Record(fcc, 16, 8);
    if (fcc == eZFCC_NV12) props.nRowBytes = props.nWidth;
    return props;
}

TEST(FrameFailures, NewFramesAndTheirData) {
    EachRequestFailsOnce(
        [] {
            ComPtr<IZFrame_I> frame;
            HRESULT hr = MakeFrame(Small(eZFCC_UYVY), frame);
            if (FAILED(hr)) return hr;
            int32_t size = 0;
            int64_t block = 0;
            hr = frame->FrameDataPack(0, &size, &block);
            CoTaskMemFree(At<void>(block));
            if (SUCCEEDED(hr)) hr = frame->FrameVideoCopyGet(&size, &block);
            CoTaskMemFree(SUCCEEDED(hr) ? At<void>(block) : nullptr);
            Bstr name;
            if (SUCCEEDED(hr)) hr = QueryFor<IZFFrame>(frame.get())->ZFDataGetByIndex(1, name.Put(), &size, &block);
            return hr;
        },
        {.bMaySucceed = true});
}

TEST(FrameFailures, FramesWithOptions) {
    EachRequestFailsOnce(
        [] {
            ComPtr<IZFrames> factory;
            Bstr options;
            {
                const FailingMemory::Pause pause;
                if (FAILED(FrameFactoryCreate(ZIidOf<IZFrames>(), factory.PutVoid()))) return E_FAIL;
                options = Bstr(ZCK_TEXT("solid_color=Red audio_samples=100"));
            }
            Z_VID_PROPS props = Small(eZFCC_ARGB32);
            ComPtr<IZFrame> frame;
            const HRESULT hr = factory->FrameCreateFromProps(&props, 0, frame.Put(), options.get());
            if (FAILED(hr)) return hr;
            return VideoOf(frame).data()[2] == 0xFF && AudioOf(frame).size == 400 ? S_OK : E_FAIL;
        },
        {.bMaySucceed = true});
}

struct CloneCase {
    const char *name;
    eZFCC from;
    int32_t type;
    eZFCC to;
    bool tessilu;
};

// A clone has its pixels and data, or only a copy has no pixels, or there is none.
TEST(FrameFailures, Clones) {
    const CloneCase cases[] = {
        {"copy", eZFCC_UYVY, eZFC_Full, eZFCC_Default, false},
        {"copy of the other family", eZFCC_UYVY, eZFC_Full, eZFCC_Default, true},
        {"reference", eZFCC_UYVY, eZFC_Reference, eZFCC_Default, false},
        {"reference of the other family", eZFCC_UYVY, eZFC_Reference, eZFCC_Default, true},
        {"into ARGB32", eZFCC_UYVY, eZFC_Full, eZFCC_ARGB32, false},
        {"into ARGB32 of the other family", eZFCC_UYVY, eZFC_Full, eZFCC_ARGB32, true},
        {"from ten bits", eZFCC_v210, eZFC_Full, eZFCC_UYVY, false},
        {"from planes", eZFCC_NV12, eZFC_Full, eZFCC_RGB24, false},
    };
    for (const CloneCase &c : cases) {
        SCOPED_TRACE(c.name);
        EachRequestFailsOnce(
            [&] {
                ComPtr<IZFrame_I> frame;
                if (FAILED(Prepared(Small(c.from), frame))) return E_FAIL;
                ComPtr<IZFrame> clone;
                HRESULT hr = S_OK;
                if (c.tessilu) {
                    ComPtr<IZFFrame> made;
                    hr = QueryFor<IZFFrame>(frame.get())->ZFClone(made.Put(), static_cast<eZFrameClone>(c.type), c.to);
                    clone = QueryFor<IZFrame>(made.get());
                } else {
                    hr = frame->FrameClone(clone.Put(), static_cast<eZFrameClone>(c.type), c.to);
                }
                frame.Reset();
                if (FAILED(hr)) return clone ? E_FAIL : hr;
                int32_t size = 0;
                int64_t data = 0;
                const bool copies = c.type == eZFC_Full && c.to == eZFCC_Default;
                if (VideoOf(clone).size == 0 && !copies) return E_FAIL;
                return clone->FrameDataGet(0x41424344, &size, &data) == S_OK && AudioOf(clone).size == 400 ? S_OK : E_FAIL;
            },
            {.bMaySucceed = true});
    }
}

TEST(FrameFailures, CutsAndShells) {
    EachRequestFailsOnce(
        [] {
            ComPtr<IZFrame_I> frame;
            if (FAILED(Prepared(Small(eZFCC_UYVY), frame))) return E_FAIL;
            tagRECT rect = {};
            rect.right = rect.bottom = 4;
            ComPtr<IZFrame> cut;
            HRESULT hr = frame->FrameCut(0, &rect, cut.Put());
            if (FAILED(hr)) return hr;
            const auto maker = QueryFor<IZFrameShell>(cut.get());
            ComPtr<IZFrame_I> clone;
            ComPtr<IZFrame_I> local;
            ZF_SHELL shell = {};
            return maker->CloneShell(cut.get(), eZFC_Full, eZFCC_ARGB32, clone.Put(), local.Put(), &shell);
        },
        {.bMaySucceed = true});
}

struct OverlayCase {
    const char *name;
    eZFCC under;
    eZFCC over;
    bool wide;
    bool masked;
    const char *options;
};

// A frame that is laid over another one; the target is as it was after a failure.
HRESULT Laid(const OverlayCase &c) {
    ComPtr<IZFrame_I> under, over, mask;
    if (FAILED(Prepared(Small(c.under), under)) || FAILED(Prepared(Small(c.over), over))) return E_FAIL;
    if (c.masked && FAILED(Prepared(Small(eZFCC_ARGB32), mask))) return E_FAIL;
    Bstr options;
    std::vector<uint8_t> before;
    {
        const FailingMemory::Pause pause;
        options = Bstr(TextFromUtf8(c.options));
        std::memset(VideoOf(over).data(), 77, static_cast<size_t>(VideoOf(over).size));
        before = VideoOf(under).Copy();
    }
    const auto target = QueryFor<IZFFrame>(under.get());
    const HRESULT hr = c.wide ? target->ZFOverlay(QueryFor<IZFFrame>(over.get()).get(), QueryFor<IZFFrame>(mask.get()).get(), 2,
                                                  2, 0.5, options.get(), 0, 0)
                              : under->FrameOverlay(over.get(), 2, 2, 0.5, nullptr);
    target->ZFAsyncWait();
    const FailingMemory::Pause pause;
    EXPECT_TRUE(SUCCEEDED(hr) || VideoOf(under).Copy() == before) << c.name;
    return hr;
}

TEST(FrameFailures, Overlays) {
    const OverlayCase cases[] = {
        {"as it stands", eZFCC_UYVY, eZFCC_UYVY, false, false, ""},
        {"by rows", eZFCC_UYVY, eZFCC_ARGB32, false, false, ""},
        {"by planes", eZFCC_RGB24, eZFCC_NV12, false, false, ""},
        {"by alpha", eZFCC_RGB24, eZFCC_ARGB32, false, false, ""},
        {"with a copy and its mask", eZFCC_UYVY, eZFCC_ARGB32, true, false, "audio=false"},
        {"with a mask frame", eZFCC_YUY2, eZFCC_RGB24, true, true, "audio_gain=-3"},
    };
    for (const OverlayCase &c : cases) {
        SCOPED_TRACE(c.name);
        EachRequestFailsOnce([&] { return Laid(c); }, {.bMaySucceed = true});
    }
}

}    // namespace
}    // namespace zck::test
