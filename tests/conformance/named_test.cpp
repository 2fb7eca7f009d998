// Data, texts and objects of frames: every operation on every name, in any order.
#include <array>
#include <cstring>

#include "tests/conformance/named_fixture.h"

namespace conformance {
namespace {

constexpr uint32_t kCodes[] = {0x38303643, 0x43363038, 1,          0x41424344, 0xFFFFFFFF, 0x7F414243, 0x1F414243, 0x80414243,
                               0x20202020, 0x7E7E7E7E, 0x00000041, 0x30317830, 0x61,       0x5F5F5F5F, 0x7B7B7B7B};

class NamedData : public Frames {
protected:
    struct One {
        ComPtr<IZFrame_I> frame;
        ComPtr<IZFFrame> wide;
        Named model;
        NameList<IUnknown *> objects;
    };
    One New() {
        ComPtr<IZFrame> frame;
        EXPECT_EQ(m_factory->FrameCreate(0, nullptr, frame.Put()), S_OK);
        return {QueryFor<IZFrame_I>(frame.get()), QueryFor<IZFFrame>(frame.get()), {}, {}};
    }
    uint32_t Code() { return kCodes[m_dice(0, static_cast<int32_t>(std::size(kCodes)) - 1)]; }

    void Set();
    void SetByCode();
    void Get();
    void GetByCode();
    void GetByIndex();
    void PackOne();
    void PackAll();
    void Unpack();
    void Text();
    void Object();
    void CopyFrom();
    void Step();

    Dice m_dice{1};
    std::array<One, 2> m_pair;
    std::array<ComPtr<IUnknown>, 3> m_objects = {PlainObject(), PlainObject(), nullptr};
};

void NamedData::Set() {
    One &a = m_pair[0];
    const Name name = AnyName(m_dice);
    const int32_t size = m_dice(-1, 12);
    Bytes bytes = m_dice.Noise(static_cast<size_t>(std::max(size, 0)));
    const int64_t value = m_dice(0, 1) != 0 ? INT64_MIN + m_dice(0, 9) : m_dice(-9, 9);
    const bool zeros = size > 0 && m_dice(0, 3) == 0;
    if (zeros) std::fill(bytes.begin(), bytes.end(), uint8_t{0});
    const int64_t address = zeros ? 0 : size > 0 ? AddressOf(bytes.data()) : value;
    const Bstr text = name.empty() && m_dice(0, 1) != 0 ? Bstr() : TextOf(name);
    EXPECT_EQ(a.wide->ZFDataSet(text.get(), size, address), a.model.DataSet(name, size, bytes, value)) << Say(name);
}

void NamedData::SetByCode() {
    One &a = m_pair[0];
    const uint32_t code = Code();
    const int32_t size = m_dice(-1, 12);
    Bytes bytes = m_dice.Noise(static_cast<size_t>(std::max(size, 0)));
    const int64_t value = m_dice(-9, 9);
    EXPECT_EQ(a.frame->FrameDataSet(static_cast<int32_t>(code), size, size > 0 ? AddressOf(bytes.data()) : value),
              a.model.DataSet(NameOfCode(code), size, bytes, value));
}

// What a look-up gives: size, and bytes or value; 0 and 0 where there is nothing.
std::string Found(const Datum *datum) { return datum == nullptr ? "0:0" : Say(*datum); }

std::string Found(int32_t size, int64_t address) { return Say(Datum{BytesAt(address, size), address}); }

void NamedData::Get() {
    One &a = m_pair[0];
    const Name name = AnyName(m_dice);
    int32_t size = 5;
    int64_t address = 5;
    Datum *want = a.model.data.Find(name);
    const HRESULT status = want != nullptr ? S_OK : Z_E_FILE_NOT_FOUND;
    EXPECT_EQ(a.wide->ZFDataGet(TextOf(name).get(), &size, &address), status) << Say(name);
    EXPECT_EQ(Found(size, address), Found(want)) << Say(name);
    EXPECT_EQ(a.wide->ZFDataGet(TextOf(name).get(), nullptr, nullptr), status);
}

void NamedData::GetByCode() {
    One &a = m_pair[0];
    const uint32_t code = m_dice(0, 9) == 0 ? 0 : Code();
    int32_t size = 5;
    int64_t address = 5;
    Datum *want = a.model.data.Find(NameOfCode(code));
    EXPECT_EQ(a.frame->FrameDataGet(static_cast<int32_t>(code), &size, &address), want != nullptr ? S_OK : Z_E_FILE_NOT_FOUND)
        << code;
    EXPECT_EQ(Found(size, address), Found(want)) << code;
}

void NamedData::GetByIndex() {
    One &a = m_pair[0];
    const auto count = static_cast<int32_t>(a.model.data.entries.size());
    const int32_t index = m_dice(0, 5) == 0 ? -1 : m_dice(0, count);
    const bool there = index >= 0 && index < count;
    int32_t code = 5, size = 5;
    int64_t address = 5;
    EXPECT_EQ(a.frame->FrameDataGetByIndex(index, &code, &size, &address), there ? S_OK : Z_E_INVALID_INDEX);
    const auto *want = there ? &a.model.data.entries[static_cast<size_t>(index)] : nullptr;
    EXPECT_EQ(static_cast<uint32_t>(code), want != nullptr ? CodeOfName(want->first) : 0)
        << (want != nullptr ? Say(want->first) : "none");
    EXPECT_EQ(Found(size, address), Found(want != nullptr ? &want->second : nullptr));
    EXPECT_EQ(a.frame->FrameDataGetByIndex(index, nullptr, nullptr, nullptr), there ? S_OK : Z_E_INVALID_INDEX);
}

void NamedData::PackOne() {
    One &a = m_pair[0];
    const uint32_t code = Code();
    int32_t size = 5;
    int64_t address = 5;
    Datum *want = a.model.data.Find(NameOfCode(code));
    EXPECT_EQ(a.frame->FrameDataPack(static_cast<int32_t>(code), &size, &address), want != nullptr ? S_OK : Z_E_FILE_NOT_FOUND);
    EXPECT_EQ(BytesAt(address, size), want != nullptr ? want->bytes : Bytes());
    EXPECT_EQ(size == 0, address == 0);
    CoTaskMemFree(PointerOf(address));
    EXPECT_EQ(a.frame->FrameDataPack(static_cast<int32_t>(code), nullptr, &address), E_POINTER);
    EXPECT_EQ(a.frame->FrameDataPack(static_cast<int32_t>(code), &size, nullptr), E_POINTER);
}

void NamedData::PackAll() {
    One &a = m_pair[0];
    int32_t size = 5;
    int64_t address = 5;
    EXPECT_EQ(a.frame->FrameDataPack(0, &size, &address), S_OK);
    EXPECT_EQ(BytesAt(address, size), a.model.Pack());
    CoTaskMemFree(PointerOf(address));
}

// Blocks that are right, cut, or of nonsense.
void NamedData::Unpack() {
    One &a = m_pair[0];
    Bytes block = m_pair[m_dice(0, 1) != 0].model.Pack();
    for (int i = m_dice(0, 2); i > 0; --i) {
        const uint32_t words[2] = {m_dice(0, 2) == 0 ? 0 : Code(), static_cast<uint32_t>(m_dice(0, 9))};
        const auto *raw = reinterpret_cast<const uint8_t *>(words);
        block.insert(block.end(), raw, raw + 8);
        const Bytes value = m_dice.Noise(words[1] != 0 ? words[1] : static_cast<size_t>(m_dice(0, 3)) * 8);
        block.insert(block.end(), value.begin(), value.end());
    }
    if (!block.empty() && m_dice(0, 2) == 0) block.resize(static_cast<size_t>(m_dice(0, static_cast<int32_t>(block.size()))));
    if (block.size() > 8 && m_dice(0, 2) == 0) {
        const uint32_t planted[] = {0, 1, 8, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF8};
        const size_t at = static_cast<size_t>(m_dice(0, static_cast<int32_t>(block.size()) - 4));
        std::memcpy(&block[at], &planted[m_dice(0, 6)], 4);
    }
    const auto size = static_cast<int32_t>(block.size());
    if (size != 0 && m_dice(0, 9) == 0) {
        EXPECT_EQ(a.frame->FrameDataSet(0, size, 0), E_INVALIDARG);
        return;
    }
    EXPECT_EQ(a.frame->FrameDataSet(0, size != 0 ? size : m_dice(-1, 0), AddressOf(block.data())), S_OK);
    a.model.Unpack(block);
}

void NamedData::Text() {
    One &a = m_pair[0];
    const Name name = AnyName(m_dice);
    const Name values[] = {u"__zf_remove__", u"__ZF_REMOVE__", u"", u"value", u"__zf_remove__ "};
    const Name value = values[m_dice(0, 1) != 0 ? 0 : m_dice(0, 4)];
    const Bstr text = name.empty() && m_dice(0, 1) != 0 ? Bstr() : TextOf(name);
    const Bstr valueText = value.empty() && m_dice(0, 1) != 0 ? Bstr() : TextOf(value);
    EXPECT_EQ(a.wide->ZFTextSet(text.get(), valueText.get()), a.model.TextSet(name, value)) << Say(name);
    const Name other = AnyName(m_dice);
    const Name *want = a.model.texts.Find(other);
    BSTR got = nullptr;
    EXPECT_EQ(a.wide->ZFTextGet(TextOf(other).get(), &got), want != nullptr ? S_OK : Z_E_FILE_NOT_FOUND);
    EXPECT_EQ(NameFrom(got), want != nullptr ? *want : Name());
    EXPECT_EQ(a.wide->ZFTextGetByIndex(static_cast<int32_t>(a.model.texts.entries.size()), nullptr, nullptr),
              Z_E_INVALID_INDEX);
    EXPECT_EQ(a.wide->ZFTextGetByIndex(-1, nullptr, nullptr), Z_E_INVALID_INDEX);
}

void NamedData::Object() {
    One &a = m_pair[0];
    if (m_dice(0, 1) != 0) {
        const Name name = AnyName(m_dice);
        const Bstr text = name.empty() && m_dice(0, 1) != 0 ? Bstr() : TextOf(name);
        IUnknown *object = m_objects[static_cast<size_t>(m_dice(0, 2))].get();
        EXPECT_EQ(a.wide->ZFObjectSet(text.get(), object), S_OK);
        a.objects.Set(name, object);
    }
    const Name name = AnyName(m_dice);
    IUnknown **want = a.objects.Find(name);
    ComPtr<IUnknown> got;
    // A plain object has no local form.
    EXPECT_EQ(a.wide->ZFObjectGet(TextOf(name).get(), got.Put(), m_dice(0, 1)), want != nullptr ? S_OK : Z_E_FILE_NOT_FOUND);
    EXPECT_EQ(got.get(), want != nullptr ? *want : nullptr);
    const auto count = static_cast<int32_t>(a.objects.entries.size());
    for (int32_t i = -1; i <= count; ++i) {
        BSTR text = nullptr;
        const bool there = i >= 0 && i < count;
        ASSERT_EQ(a.wide->ZFObjectGetByIndex(i, &text, got.Put(), m_dice(0, 1)), there ? S_OK : Z_E_INVALID_INDEX);
        EXPECT_EQ(Say(NameFrom(text)), there ? Say(a.objects.entries[static_cast<size_t>(i)].first) : "");
        EXPECT_EQ(got.get(), there ? a.objects.entries[static_cast<size_t>(i)].second : nullptr);
    }
}

void NamedData::CopyFrom() {
    One &a = m_pair[0], &b = m_pair[m_dice(0, 3) != 0];
    const int32_t mode = m_dice(0, 3);
    const Named source = b.model;
    const HRESULT want = &a == &b && mode >= 2 ? a.model.CopyFrom({}, mode) : a.model.CopyFrom(source, mode);
    EXPECT_EQ(a.frame->FrameDataCopyFrom(b.frame.get(), mode), want) << mode;
    EXPECT_EQ(a.frame->FrameDataCopyFrom(nullptr, mode), E_INVALIDARG);
}

void NamedData::Step() {
    switch (m_dice(0, 13)) {
        case 0:
        case 1:
        case 2:
            return Set();
        case 3:
            return SetByCode();
        case 4:
            return Get();
        case 5:
            return GetByCode();
        case 6:
            return GetByIndex();
        case 7:
            return PackOne();
        case 8:
            return PackAll();
        case 9:
            return Unpack();
        case 10:
            return Text();
        case 11:
            return Object();
        case 12:
            return CopyFrom();
        default:
            return std::swap(m_pair[0], m_pair[1]);
    }
}

TEST_F(NamedData, AnyOperationOnAnyName) {
    for (uint32_t round = 0; round < 400; ++round) {
        m_dice = Dice(round);
        m_pair = {New(), New()};
        for (int step = 0; step < 60; ++step) {
            Step();
            for (One &one : m_pair)
                ASSERT_EQ(Listed(one.wide.get()), Listed(one.model)) << "round " << round << " step " << step;
            ASSERT_FALSE(HasFailure()) << "round " << round << " step " << step;
        }
    }
}

// Every code comes back from its name.
TEST_F(NamedData, CodesAndNames) {
    const One one = New();
    for (int32_t i = 0; i < 4000; ++i) {
        uint32_t code = 0;
        for (int b = 0; b < 4; ++b)
            code |= static_cast<uint32_t>(m_dice(0, 2) == 0 ? m_dice(0, 255) : m_dice(0x1E, 0x81)) << (8 * b);
        if (code == 0) continue;
        ASSERT_EQ(one.frame->FrameDataSet(static_cast<int32_t>(code), 0, i), S_OK);
        int32_t got = 0, size = 0;
        int64_t value = 0;
        BSTR name = nullptr;
        ASSERT_EQ(one.frame->FrameDataGetByIndex(0, &got, &size, &value), S_OK);
        ASSERT_EQ(one.wide->ZFDataGetByIndex(0, &name, nullptr, nullptr), S_OK);
        ASSERT_EQ(Say(NameFrom(name)), Say(NameOfCode(code)));
        ASSERT_EQ(static_cast<uint32_t>(got), CodeOfName(NameOfCode(code)));
        ASSERT_EQ(value, i);
        ASSERT_EQ(one.frame->FrameDataSet(static_cast<int32_t>(code), -1, 0), S_OK);
    }
}

// Without a name the id of the memory comes in place of data.
TEST_F(NamedData, TheNameOfNothingIsThePixels) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(frame.get());
    int64_t id = 0, got = 0;
    int32_t size = 77;
    ASSERT_EQ(QueryFor<IZFrame_I>(frame.get())->FrameBufferIdGet(&id), S_OK);
    EXPECT_EQ(wide->ZFDataGet(nullptr, &size, &got), S_OK);
    EXPECT_EQ(got, id);
    EXPECT_EQ(size, 77);
    EXPECT_EQ(wide->ZFDataGet(nullptr, &size, nullptr), E_POINTER);
    EXPECT_EQ(New().wide->ZFDataGet(nullptr, &size, &got), Z_E_EMPTY);
}

}    // namespace
}    // namespace conformance
