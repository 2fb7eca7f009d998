#include "frames/data/named_data.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "platform/object.h"

namespace zck {
namespace {

Bstr NameAt(const NamedData &named, int32_t index) {
    Bstr name;
    DataBlobPtr blob;
    EXPECT_EQ(S_OK, named.DataGetByIndex(index, name.Put(), blob));
    return name;
}

TEST(NamedData, BytesZerosAndValues) {
    NamedData named;
    const uint8_t bytes[3] = {1, 2, 3};
    const int64_t value = 0x0102030405060708;
    DataBlobPtr blob;
    EXPECT_EQ(kErrorFileNotFound, named.DataGet(ZCK_TEXT("b"), blob));
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("b"), 3, bytes));
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("z"), 4, nullptr));
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("v"), 0, &value));
    ASSERT_EQ(S_OK, named.DataGet(ZCK_TEXT("B"), blob));
    EXPECT_EQ(0, std::memcmp(blob->Data(), bytes, 3));
    const DataBlobPtr held = blob;
    // A set makes a new holder; one that was handed out stays as it is.
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("B"), 1, &bytes[2]));
    EXPECT_EQ(3U, held->Size());
    ASSERT_EQ(S_OK, named.DataGet(ZCK_TEXT("z"), blob));
    const uint8_t zeros[4] = {};
    EXPECT_EQ(4U, blob->Size());
    EXPECT_EQ(0, std::memcmp(blob->Data(), zeros, 4));
    ASSERT_EQ(S_OK, named.DataGet(ZCK_TEXT("v"), blob));
    EXPECT_EQ(0U, blob->Size());
    EXPECT_EQ(0, std::memcmp(blob->Data(), &value, 8));
    EXPECT_EQ(Text(ZCK_TEXT("b")), NameAt(named, 0).view());
    EXPECT_EQ(kErrorInvalidIndex, named.DataGetByIndex(3, nullptr, blob));
    EXPECT_EQ(kErrorInvalidIndex, named.DataGetByIndex(-1, nullptr, blob));
    EXPECT_EQ(E_INVALIDARG, named.DataSet(TextView(), 1, bytes));
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("b"), -5, nullptr));
    EXPECT_EQ(S_FALSE, named.DataSet(ZCK_TEXT("b"), -5, nullptr));
    EXPECT_EQ(2, named.CountsGet().data);
}

TEST(NamedData, ARefusedBlockChangesNothing) {
    NamedData named;
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("b"), 1, nullptr));
    EXPECT_EQ(E_INVALIDARG, named.DataUnpack(nullptr, 1));
    EXPECT_EQ(1, named.CountsGet().data);
    EXPECT_EQ(S_OK, named.DataUnpack(nullptr, 0));
    EXPECT_EQ(0, named.CountsGet().data);
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("b"), 1, nullptr));
    EXPECT_EQ(S_OK, named.DataUnpack(nullptr, -7));
    EXPECT_EQ(0, named.CountsGet().data);
}

TEST(NamedData, OneEntryIsPackedAlone) {
    NamedData named;
    const int64_t value = 5;
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("aaaa"), 0, &value));
    int32_t size = -1;
    void *block = &size;
    EXPECT_EQ(S_OK, named.DataPack(0x61616161, size, block));    // a value in place of an address has no bytes
    EXPECT_EQ(0, size);
    EXPECT_EQ(nullptr, block);
    EXPECT_EQ(kErrorFileNotFound, named.DataPack(0x62626262, size, block));
}

class CoPlain : public CoObject<IPersist> {
public:
    HRESULT Z_STDCALL GetClassID(CLSID *) override { return E_NOTIMPL; }
};

}    // namespace
}    // namespace zck

template <>
struct ZIidHolder<IPersist> {
    static const IID &Get() { return IID_IPersist; }
};

namespace zck {
namespace {

TEST(NamedData, ObjectsAreCounted) {
    const int32_t before = ModuleCount::Get();
    ComPtr<IPersist> object;
    ASSERT_EQ(S_OK, CreateObject<CoPlain>(nullptr, IID_IPersist, object.PutVoid()));
    {
        NamedData named;
        named.ObjectSet(ZCK_TEXT("o"), object.get());
        named.ObjectSet(TextView(), nullptr);
        ComPtr<IUnknown> got;
        EXPECT_EQ(S_OK, named.ObjectGet(ZCK_TEXT("O"), got));
        EXPECT_EQ(static_cast<IUnknown *>(object.get()), got.get());
        Bstr name;
        EXPECT_EQ(S_OK, named.ObjectGetByIndex(1, name.Put(), got));
        EXPECT_FALSE(got);
        EXPECT_EQ(kErrorInvalidIndex, named.ObjectGetByIndex(2, nullptr, got));
        EXPECT_EQ(kErrorFileNotFound, named.ObjectGet(ZCK_TEXT("p"), got));
        EXPECT_EQ(2, named.CountsGet().objects);
        object.Reset();
        EXPECT_EQ(before + 1, ModuleCount::Get());
        named.ObjectSet(ZCK_TEXT("o"), nullptr);
        EXPECT_EQ(before, ModuleCount::Get());
    }
}

TEST(NamedData, JoiningReplacesInPlaceAndAddsBehind) {
    NamedData named;
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("One"), 1, nullptr));
    EXPECT_EQ(S_OK, named.DataSet(ZCK_TEXT("two"), 1, nullptr));
    named.TextAdd(ZCK_TEXT("t"), ZCK_TEXT("old"));
    NamedMaps maps;
    DataBlobPtr blob;
    ASSERT_EQ(S_OK, DataBlobCreate(nullptr, 2, 2, blob));
    maps.data.Set(ZCK_TEXT("three"), blob);
    maps.data.Set(ZCK_TEXT("one"), blob);
    maps.texts.Set(ZCK_TEXT("T"), Text(ZCK_TEXT("new")));
    bool ran = false;
    named.Join(maps, [&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_EQ(3, named.CountsGet().data);
    EXPECT_EQ(Text(ZCK_TEXT("One")), NameAt(named, 0).view());
    EXPECT_EQ(Text(ZCK_TEXT("three")), NameAt(named, 2).view());
    ASSERT_EQ(S_OK, named.DataGet(ZCK_TEXT("one"), blob));
    EXPECT_EQ(2U, blob->Size());
    Bstr text;
    EXPECT_EQ(S_OK, named.TextGet(ZCK_TEXT("t"), text.Put()));
    EXPECT_EQ(Text(ZCK_TEXT("new")), text.view());
}

// Two frames may take from each other, and one from itself.
TEST(NamedData, ThreadsTakeFromEachOther) {
    NamedData a;
    NamedData b;
    EXPECT_EQ(S_OK, a.DataSet(ZCK_TEXT("name"), 1, nullptr));
    EXPECT_EQ(S_OK, b.DataSet(ZCK_TEXT("name"), 2, nullptr));
    std::atomic<int> broken{0};
    const auto take = [&](NamedData &to, NamedData &from) {
        for (int i = 0; i < 500; ++i) {
            if (FAILED(to.DataTakeCoded(from)) || FAILED(to.DataTakeCoded(to))) ++broken;
            to.TakeNamed(from);
            DataBlobPtr blob;
            if (FAILED(to.DataGet(ZCK_TEXT("name"), blob)) || blob->Size() == 0 || blob->Size() > 2) ++broken;
        }
    };
    std::thread one(take, std::ref(a), std::ref(b));
    std::thread two(take, std::ref(b), std::ref(a));
    one.join();
    two.join();
    EXPECT_EQ(0, broken.load());
}

}    // namespace
}    // namespace zck
