// No lock is held while a foreign object is called: objects that change the frame from inside a call must not stop it.
// A lock that is held would stop these tests for ever; CTest's time limit tells.
#include <functional>
#include <thread>

#include "frames/object/frame.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

// Runs a function on another thread inside each call, and waits for it.
class Meddler final : public RefusingQuorvex {
public:
    explicit Meddler(std::function<void()> &action) : m_action(action) {}
    ~Meddler() override { Meddle(); }

    HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *process) override {
        Meddle();
        *process = CurrentProcessId();
        return S_OK;
    }
    HRESULT Z_STDCALL FrameBufferIdGet(int64_t *section) override {
        Meddle();
        *section = 5;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameInfoGet(Z_TIME *, Z_AV_PROPS *, int32_t *video, int32_t *audio) override {
        Meddle();
        if (video != nullptr) *video = 0;
        if (audio != nullptr) *audio = 0;
        return S_OK;
    }

private:
    void Meddle() {
        if (m_action) std::thread(m_action).join();
    }
    std::function<void()> &m_action;
};

// A factory of a pool of its own, which turns a picture over each time a buffer is asked for.
class TurningFactory final : public CoObject<IZFrames_I> {
public:
    explicit TurningFactory(ComPtr<IZFrames_I> pool, ComPtr<IZFFrame> frame)
        : m_pool(std::move(pool)), m_frame(std::move(frame)) {}

    HRESULT Z_STDCALL BufferGet(int32_t size, IPCBuffer **buffer) override {
        Z_AV_PROPS props = {};
        EXPECT_EQ(S_OK, m_frame->ZFAVPropsGet(&props, nullptr));
        props.vidProps.nHeight = -props.vidProps.nHeight;
        EXPECT_EQ(S_OK, m_frame->ZFAVPropsSet(&props, nullptr));
        return m_pool->BufferGet(size, buffer);
    }
    HRESULT Z_STDCALL BufferReturn(IPCBuffer *buffer) override { return m_pool->BufferReturn(buffer); }

    HRESULT Z_STDCALL FrameLocal(IUnknown *, IZFrame **, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCreate(int32_t, IUnknown *, IZFrame **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCreateFromProps(Z_VID_PROPS *, int64_t, IZFrame **, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCreateFromFile(BSTR, IZFrame **, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCreateFromHbitmap(int64_t, IZFrame **, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCreateReserved() override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameAlloc(int32_t, int32_t, IUnknown *, IZFrame_I **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCloneConvert(IZFrame *, IZFrame_I **, eZFrameClone, eZFCC) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FramesConvert(IZFrame *, IZFrame *, Z_VID_PROPS *, IZFrame **, BSTR) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameMakeLocal(IZFrame *, IZFrame_I **, int32_t) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL FrameCloneObject(IUnknown *, IZFrame **, eZFrameClone, eZFCC) override { return E_NOTIMPL; }

private:
    ComPtr<IZFrames_I> m_pool;
    ComPtr<IZFFrame> m_frame;
};

class Reentry : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        m_frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
        m_tessilu = As<IZFFrame>(m_frame);
        ASSERT_EQ(S_OK, CreateObject<Meddler>(nullptr, ZIidOf<IZFrame_I>(), m_meddler.PutVoid(), m_action));
        m_action = [this] {
            ++m_calls;
            m_frame->FrameTimeSet(nullptr);
            m_frame->FrameDataSet(0x41414141, 0, m_calls);
        };
    }
    void TearDown() override {
        m_action = nullptr;
        m_meddler.Reset();
        m_tessilu.Reset();
        m_frame.Reset();
        FrameTest::TearDown();
    }

    std::function<void()> m_action;
    int m_calls = 0;
    ComPtr<IZFrame_I> m_frame;
    ComPtr<IZFFrame> m_tessilu;
    ComPtr<IZFrame_I> m_meddler;
};

TEST_F(Reentry, ObjectsMadeLocal) {
    const Bstr name(ZCK_TEXT("o"));
    ASSERT_EQ(S_OK, m_tessilu->ZFObjectSet(name.get(), m_meddler.get()));
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGet(name.get(), object.Put(), 1));
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGetByIndex(0, nullptr, object.Put(), 1));
    EXPECT_GT(m_calls, 0);
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectSet(name.get(), nullptr));
}

TEST_F(Reentry, ObjectsThatAreReplacedDieOutside) {
    const Bstr name(ZCK_TEXT("o"));
    ASSERT_EQ(S_OK, m_tessilu->ZFObjectSet(name.get(), m_meddler.get()));
    m_meddler.Reset();
    EXPECT_EQ(0, m_calls);
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectSet(name.get(), nullptr));
    EXPECT_EQ(1, m_calls);
}

TEST_F(Reentry, KeepersAreAskedForTheirSection) {
    std::vector<uint8_t> pixels(64);
    Z_VID_PROPS props = Record(eZFCC_ARGB32, 4, -4);
    ComPtr<IZFFrame> wrapped;
    ASSERT_EQ(S_OK,
              As<IZFFactory>(m_factory)->ZFFrameWrap(&props, 64, AddressIn(pixels.data()), m_meddler.get(), wrapped.Put()));
    const ComPtr<IZFrame_I> kept = m_frame;
    m_frame = As<IZFrame_I>(wrapped);
    int64_t id = 0;
    EXPECT_EQ(S_OK, m_frame->FrameBufferIdGet(&id));
    EXPECT_EQ(5, id);
    ZF_INFO info = {};
    EXPECT_EQ(S_OK, wrapped->ZFInfoGet(&info));
    EXPECT_EQ(5, info.llSectionId);
    EXPECT_EQ(2, m_calls);
    m_frame = kept;
}

TEST_F(Reentry, SourcesOfClonesAndData) {
    ComPtr<IZFrame_I> clone;
    EXPECT_EQ(S_OK, m_factory->FrameCloneConvert(m_meddler.get(), clone.Put(), eZFC_Full, eZFCC_ARGB32));
    EXPECT_EQ(S_FALSE, m_frame->FrameDataCopyFrom(m_meddler.get(), 2));
    EXPECT_GT(m_calls, 0);
}

TEST_F(Reentry, APictureThatTurnsWhileItsCopyGetsABuffer) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 8, -6));
    const auto tessilu = As<IZFFrame>(frame);
    ComPtr<IZFrames_I> factory;
    ASSERT_EQ(S_OK, CreateObject<TurningFactory>(nullptr, ZIidOf<IZFrames_I>(), factory.PutVoid(), m_factory, tessilu));
    for (const bool quorvex : {true, false}) {
        ComPtr<CCoZFrame2> clone;
        ASSERT_EQ(S_OK, quorvex ? CCoZFrame2::CloneQuorvex(factory.get(), frame.get(), eZFC_Full, 0, clone)
                                : CCoZFrame2::CloneTessilu(factory.get(), tessilu.get(), eZFC_Full, 0, clone));
        // Description and pixels are of one moment: that of the copy.
        EXPECT_EQ(PropsOf(frame).vidProps.nHeight, PropsOf(clone).vidProps.nHeight);
        EXPECT_EQ(VideoOf(frame).Copy(), VideoOf(clone).Copy());
    }
}

}    // namespace
}    // namespace zck::test
