// Objects of a frame travel in its stream, and in no block.
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

// Without a marshaler of its own: the system's is taken.
class CoPlain : public CoObject<IClassFactory> {
public:
    HRESULT Z_STDCALL CreateInstance(IUnknown *, REFIID, void **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL LockServer(BOOL) override { return S_OK; }
};

class StreamObjects : public FrameTest {
protected:
    StreamObjects() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~StreamObjects() override { CoUninitialize(); }

    ComPtr<IZFFrame> Empty() {
        ComPtr<IZFrame_I> frame;
        EXPECT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, frame.Put()));
        return As<IZFFrame>(frame);
    }
    // Names and objects in their order.
    static std::vector<std::pair<Text, IUnknown *>> Held(const ComPtr<IZFFrame> &frame) {
        std::vector<std::pair<Text, IUnknown *>> held;
        BSTR name = nullptr;
        ComPtr<IUnknown> object;
        for (int32_t i = 0; frame->ZFObjectGetByIndex(i, &name, object.Put(), 0) == S_OK; ++i) {
            held.emplace_back(Text(ViewOf(name)), QueryFor<IUnknown>(object.get()).get());
            SysFreeString(name);
        }
        return held;
    }
};

TEST_F(StreamObjects, ThoseThatMarshalComeBack) {
    const auto frame = Empty(), guest = Empty();
    ComPtr<IUnknown> plain;
    ASSERT_EQ(S_OK, CreateObject<CoPlain>(nullptr, IID_IUnknown, plain.PutVoid()));
    EXPECT_EQ(S_OK, frame->ZFObjectSet(Bstr(ZCK_TEXT("guest")).get(), guest.get()));
    EXPECT_EQ(S_OK, frame->ZFObjectSet(Bstr(ZCK_TEXT("nothing")).get(), nullptr));
    EXPECT_EQ(S_OK, frame->ZFObjectSet(Bstr(ZCK_TEXT("plain")).get(), plain.get()));
    ComPtr<IUnknown> stream;
    ASSERT_EQ(S_OK, As<IZFrame_I>(frame)->ZFSaveToStream(stream.Put(), eZFC_Data));
    const auto copy = Empty();
    ASSERT_EQ(S_OK, As<IZFrame_I>(copy)->ZFLoadFromStream(stream.get(), eZFC_Data));
    const std::vector<std::pair<Text, IUnknown *>> want = {{Text(ZCK_TEXT("guest")), QueryFor<IUnknown>(guest.get()).get()},
                                                           {Text(ZCK_TEXT("plain")), plain.get()}};
    EXPECT_EQ(want, Held(copy));
}

TEST_F(StreamObjects, BlocksHaveNone) {
    const auto frame = Empty(), copy = Empty();
    EXPECT_EQ(S_OK, frame->ZFObjectSet(Bstr(ZCK_TEXT("guest")).get(), copy.get()));
    int32_t size = 0;
    int64_t block = 0;
    ASSERT_EQ(S_OK, frame->ZFSaveAll(&size, &block, eZFC_Data));
    EXPECT_EQ(32, size);
    EXPECT_EQ(S_OK, copy->ZFLoadAll(size, block, eZFC_Data));
    EXPECT_TRUE(Held(copy).empty());
    CoTaskMemFree(At<void>(block));
}

}    // namespace
}    // namespace zck::test
