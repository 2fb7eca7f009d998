#include <cstring>

#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

constexpr int32_t kC608 = 0x38303643;    // 'C608'

class FrameData : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        ASSERT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, m_frame.Put()));
        m_tessilu = As<IZFFrame>(m_frame);
    }
    void TearDown() override {
        m_tessilu.Reset();
        m_frame.Reset();
        FrameTest::TearDown();
    }

    ComPtr<IZFrame_I> m_frame;
    ComPtr<IZFFrame> m_tessilu;
};

TEST_F(FrameData, BytesByCode) {
    const uint8_t bytes[3] = {1, 2, 3};
    int32_t size = 7;
    int64_t at = 7;
    EXPECT_EQ(kErrorFileNotFound, m_frame->FrameDataGet(kC608, &size, &at));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, at);
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 3, AddressIn(bytes)));
    EXPECT_EQ(S_OK, m_frame->FrameDataGet(kC608, &size, &at));
    EXPECT_EQ(3, size);
    EXPECT_EQ(0, std::memcmp(At<void>(at), bytes, 3));
    EXPECT_EQ(S_OK, m_tessilu->ZFDataGet(Bstr(ZCK_TEXT("c608")).get(), &size, nullptr));
    EXPECT_EQ(S_OK, m_frame->FrameDataGet(kC608, nullptr, nullptr));
    // A null address is three zeros.
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 3, 0));
    EXPECT_EQ(S_OK, m_frame->FrameDataGet(kC608, &size, &at));
    EXPECT_EQ(3, size);
    EXPECT_EQ(0, *At<uint8_t>(at + 2));
}

TEST_F(FrameData, NoNameIsTheSection) {
    ComPtr<IZFrame_I> pixels = Frame(Record(eZFCC_UYVY, 16, 8));
    int64_t id = 0;
    ASSERT_EQ(S_OK, pixels->FrameBufferIdGet(&id));
    int32_t size = 7;
    int64_t at = 7;
    EXPECT_EQ(S_OK, As<IZFFrame>(pixels)->ZFDataGet(nullptr, &size, &at));
    EXPECT_EQ(id, at);
    EXPECT_EQ(7, size);
    EXPECT_EQ(E_POINTER, As<IZFFrame>(pixels)->ZFDataGet(nullptr, &size, nullptr));
    EXPECT_EQ(kErrorEmpty, m_tessilu->ZFDataGet(nullptr, nullptr, &at));
    EXPECT_EQ(0, at);
    // An empty name is looked up like any other.
    at = 7;
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFDataGet(Bstr(TextView()).get(), &size, &at));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, at);
}

TEST_F(FrameData, NamesMeetByTheirKeys) {
    EXPECT_EQ(S_OK, m_tessilu->ZFDataSet(Bstr(ZCK_TEXT("_a")).get(), 0, 1));
    EXPECT_EQ(S_OK, m_tessilu->ZFDataSet(Bstr(ZCK_TEXT("\x7F\u0141")).get(), 0, 2));
    ZF_INFO info = {};
    EXPECT_EQ(S_OK, m_tessilu->ZFInfoGet(&info));
    EXPECT_EQ(1, info.nDataCount);
    Bstr name;
    int64_t value = 0;
    EXPECT_EQ(S_OK, m_tessilu->ZFDataGetByIndex(0, name.Put(), nullptr, &value));
    EXPECT_EQ("_a", Utf8FromText(name.view()));
    EXPECT_EQ(2, value);
}

// Outputs are cleared by calls that give nothing.
TEST_F(FrameData, OutputsOfRefusals) {
    BSTR name = nullptr;
    BSTR text = nullptr;
    IUnknown *object = nullptr;
    int32_t size = 0;
    int64_t at = 0;
    const auto soil = [&] {
        name = text = reinterpret_cast<BSTR>(&size);
        object = m_factory.get();
        size = 7;
        at = 7;
    };
    soil();
    EXPECT_EQ(kErrorInvalidIndex, m_tessilu->ZFDataGetByIndex(0, &name, &size, &at));
    EXPECT_TRUE(name == nullptr && size == 0 && at == 0);
    soil();
    EXPECT_EQ(kErrorInvalidIndex, m_tessilu->ZFTextGetByIndex(0, &name, &text));
    EXPECT_TRUE(name == nullptr && text == nullptr);
    soil();
    EXPECT_EQ(kErrorInvalidIndex, m_tessilu->ZFObjectGetByIndex(0, &name, &object, 0));
    EXPECT_TRUE(name == nullptr && object == nullptr);
    soil();
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFTextGet(nullptr, &text));
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFObjectGet(nullptr, &object, 1));
    EXPECT_TRUE(text == nullptr && object == nullptr);
}

TEST_F(FrameData, AValueInPlaceOfBytes) {
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 5));
    int32_t size = -1;
    int64_t value = -1;
    EXPECT_EQ(S_OK, m_frame->FrameDataGet(kC608, &size, &value));
    EXPECT_EQ(0, size);
    EXPECT_EQ(5, value);

    // Packing makes eight bytes of it.
    int32_t packed = 0;
    int64_t block = 0;
    EXPECT_EQ(S_OK, m_frame->FrameDataPack(0, &packed, &block));
    EXPECT_EQ(16, packed);
    const uint8_t expected[16] = {'C', '6', '0', '8', 8, 0, 0, 0, 5};
    EXPECT_EQ(0, std::memcmp(At<void>(block), expected, 16));
    ComPtr<IZFrame_I> other;
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, other.Put()));
    EXPECT_EQ(S_OK, other->FrameDataSet(0, packed, block));
    CoTaskMemFree(At<void>(block));
    EXPECT_EQ(S_OK, other->FrameDataGet(kC608, &size, &value));
    EXPECT_EQ(8, size);
    EXPECT_EQ(0, std::memcmp(At<void>(value), expected + 8, 8));
}

TEST_F(FrameData, NegativeSizeRemoves) {
    EXPECT_EQ(S_FALSE, m_frame->FrameDataSet(kC608, -1, 0));
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 1));
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, -1, 0));
    EXPECT_EQ(kErrorFileNotFound, m_frame->FrameDataGet(kC608, nullptr, nullptr));
    EXPECT_EQ(E_INVALIDARG, m_tessilu->ZFDataSet(nullptr, -1, 0));
    EXPECT_EQ(E_INVALIDARG, m_tessilu->ZFDataSet(Bstr(TextView()).get(), 0, 0));
}

TEST_F(FrameData, IndicesFollowFirstInsertion) {
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 1));
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(0x01, 0, 2));
    EXPECT_EQ(S_OK, m_tessilu->ZFDataSet(Bstr(ZCK_TEXT("C608")).get(), 0, 3));
    int32_t code = 0;
    int32_t size = 0;
    int64_t value = 0;
    EXPECT_EQ(S_OK, m_frame->FrameDataGetByIndex(0, &code, &size, &value));
    EXPECT_EQ(kC608, code);
    EXPECT_EQ(3, value);
    EXPECT_EQ(S_OK, m_frame->FrameDataGetByIndex(1, &code, &size, &value));
    EXPECT_EQ(1, code);
    EXPECT_EQ(2, value);
    EXPECT_EQ(kErrorInvalidIndex, m_frame->FrameDataGetByIndex(2, &code, &size, &value));
    EXPECT_EQ(0, code);
    EXPECT_EQ(0, value);
    EXPECT_EQ(kErrorInvalidIndex, m_frame->FrameDataGetByIndex(-1, nullptr, nullptr, nullptr));
    Bstr name;
    EXPECT_EQ(S_OK, m_tessilu->ZFDataGetByIndex(1, name.Put(), nullptr, nullptr));
    EXPECT_EQ("0x00000001", Utf8FromText(name.view()));
}

TEST_F(FrameData, PackingOneEntry) {
    const uint8_t bytes[3] = {9, 8, 7};
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 3, AddressIn(bytes)));
    int32_t size = 0;
    int64_t block = 0;
    EXPECT_EQ(S_OK, m_frame->FrameDataPack(kC608, &size, &block));
    EXPECT_EQ(3, size);
    EXPECT_EQ(0, std::memcmp(At<void>(block), bytes, 3));
    CoTaskMemFree(At<void>(block));
    EXPECT_EQ(kErrorFileNotFound, m_frame->FrameDataPack(0x41414141, &size, &block));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, block);
    EXPECT_EQ(E_POINTER, m_frame->FrameDataPack(0, nullptr, &block));
    EXPECT_EQ(E_POINTER, m_frame->FrameDataPack(0, &size, nullptr));
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(0, 0, 0));
    EXPECT_EQ(S_OK, m_frame->FrameDataPack(0, &size, &block));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, block);
}

struct PackedCase {
    const char *name;
    std::vector<uint8_t> packed;
    int32_t entries;
};

TEST_F(FrameData, PackedBytesFromOutside) {
    const PackedCase cases[] = {
        {"nothing", {}, 0},
        {"too short for a head", {'A', 'A', 'A', 'A', 1, 0, 0}, 0},
        {"one", {'A', 'A', 'A', 'A', 1, 0, 0, 0, 7}, 1},
        {"code 0 is passed over", {0, 0, 0, 0, 1, 0, 0, 0, 7, 'A', 'A', 'A', 'A', 1, 0, 0, 0, 7}, 1},
        {"longer than the block", {'A', 'A', 'A', 'A', 2, 0, 0, 0, 7}, 0},
        {"absurdly long", {'A', 'A', 'A', 'A', 0xFF, 0xFF, 0xFF, 0xFF, 7, 7, 7, 7, 7, 7, 7, 7, 7}, 0},
        {"length 0 takes the eight bytes that follow, which are read again as a head",
         {'A', 'A', 'A', 'A', 0, 0, 0, 0, 'B', 'B', 'B', 'B', 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8},
         2},
        {"length 0 at the end", {'A', 'A', 'A', 'A', 0, 0, 0, 0}, 0},
    };
    for (const PackedCase &c : cases) {
        EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 1));
        // A copy of its own, so that a sanitizer sees a read past its end.
        const std::vector<uint8_t> block(c.packed);
        EXPECT_EQ(S_OK, m_frame->FrameDataSet(0, static_cast<int32_t>(block.size()), AddressIn(block.data()))) << c.name;
        ZF_INFO info = {};
        EXPECT_EQ(S_OK, m_tessilu->ZFInfoGet(&info));
        EXPECT_EQ(c.entries, info.nDataCount) << c.name;
    }
    EXPECT_EQ(E_INVALIDARG, m_frame->FrameDataSet(0, 8, 0));
}

TEST_F(FrameData, CopyFromAnotherFrame) {
    ComPtr<IZFrame_I> source;
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, source.Put()));
    EXPECT_EQ(E_INVALIDARG, m_frame->FrameDataCopyFrom(nullptr, 2));
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 1));
    EXPECT_EQ(S_FALSE, m_frame->FrameDataCopyFrom(source.get(), 0));
    EXPECT_EQ(S_OK, m_frame->FrameDataGet(kC608, nullptr, nullptr));
    EXPECT_EQ(S_FALSE, m_frame->FrameDataCopyFrom(source.get(), 2));
    EXPECT_EQ(kErrorFileNotFound, m_frame->FrameDataGet(kC608, nullptr, nullptr));

    // Long names come over by their first four characters.
    EXPECT_EQ(S_OK, As<IZFFrame>(source)->ZFDataSet(Bstr(ZCK_TEXT("LongName")).get(), 0, 77));
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 1));
    EXPECT_EQ(S_OK, m_frame->FrameDataCopyFrom(source.get(), 0));
    EXPECT_EQ(kErrorFileNotFound, m_frame->FrameDataGet(kC608, nullptr, nullptr));
    int32_t size = 0;
    int64_t at = 0;
    EXPECT_EQ(S_OK, m_tessilu->ZFDataGet(Bstr(ZCK_TEXT("long")).get(), &size, &at));
    EXPECT_EQ(8, size);
    EXPECT_EQ(77, *At<int64_t>(at));
}

TEST_F(FrameData, CopyFromItselfEmptiesFirst) {
    EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 0, 1));
    EXPECT_EQ(S_OK, m_frame->FrameDataCopyFrom(m_frame.get(), 0));
    EXPECT_EQ(S_FALSE, m_frame->FrameDataCopyFrom(m_frame.get(), 2));
}

TEST_F(FrameData, Objects) {
    const Bstr name(ZCK_TEXT("MASK8"));
    ComPtr<IZFrame> other;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, other.Put()));
    ComPtr<IUnknown> got;
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFObjectGet(name.get(), got.Put(), 0));
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectSet(name.get(), other.get()));
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGet(Bstr(ZCK_TEXT("mask8")).get(), got.Put(), 0));
    EXPECT_EQ(static_cast<IUnknown *>(other.get()), got.get());
    // A local form of the frame: itself, by its other view.
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGet(name.get(), got.Put(), 1));
    EXPECT_EQ(static_cast<IUnknown *>(As<IZFFrame>(other).get()), got.get());
    // What is no frame is given as it is.
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectSet(name.get(), m_factory.get()));
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGet(name.get(), got.Put(), 1));
    EXPECT_EQ(static_cast<IUnknown *>(m_factory.get()), got.get());
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGet(name.get(), nullptr, 0));
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFObjectGet(nullptr, nullptr, 0));
    // Null is stored like any object.
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectSet(nullptr, nullptr));
    got = m_factory.get();
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGet(Bstr(TextView()).get(), got.Put(), 1));
    EXPECT_FALSE(got);

    Bstr found;
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGetByIndex(0, found.Put(), got.Put(), 0));
    EXPECT_EQ("MASK8", Utf8FromText(found.view()));
    EXPECT_EQ(S_OK, m_tessilu->ZFObjectGetByIndex(0, nullptr, nullptr, 0));
    EXPECT_EQ(kErrorInvalidIndex, m_tessilu->ZFObjectGetByIndex(2, nullptr, got.Put(), 0));
    EXPECT_FALSE(got);
    got.Reset();
}

// Only the word for removal is stored.
TEST_F(FrameData, TextsAreClearedAndHardlySet) {
    const Bstr name(ZCK_TEXT("title"));
    Bstr got;
    EXPECT_EQ(S_FALSE, m_tessilu->ZFTextSet(name.get(), Bstr(ZCK_TEXT("any")).get()));
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFTextGet(name.get(), got.Put()));
    EXPECT_EQ(S_OK, m_tessilu->ZFTextSet(name.get(), Bstr(ZCK_TEXT("__zf_remove__")).get()));
    EXPECT_EQ(S_OK, m_tessilu->ZFTextGet(Bstr(ZCK_TEXT("TITLE")).get(), got.Put()));
    EXPECT_EQ("__zf_remove__", Utf8FromText(got.view()));
    Bstr found;
    EXPECT_EQ(S_OK, m_tessilu->ZFTextGetByIndex(0, found.Put(), got.Put()));
    EXPECT_EQ("title", Utf8FromText(found.view()));
    EXPECT_EQ(S_OK, m_tessilu->ZFTextGetByIndex(0, nullptr, nullptr));
    EXPECT_EQ(kErrorInvalidIndex, m_tessilu->ZFTextGetByIndex(1, nullptr, nullptr));
    EXPECT_EQ(S_OK, m_tessilu->ZFTextSet(name.get(), nullptr));
    EXPECT_EQ(S_FALSE, m_tessilu->ZFTextSet(name.get(), nullptr));
    EXPECT_EQ(kErrorFileNotFound, m_tessilu->ZFTextGet(name.get(), nullptr));
    // The word counts with its case.
    EXPECT_EQ(S_FALSE, m_tessilu->ZFTextSet(name.get(), Bstr(ZCK_TEXT("__ZF_remove__")).get()));
}

}    // namespace
}    // namespace zck::test
