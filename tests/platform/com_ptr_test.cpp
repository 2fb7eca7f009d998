#include "platform/com_ptr.h"

#include <gtest/gtest.h>

#include "platform/object.h"

namespace zck {
namespace {

class CoPlain : public CoObject<IClassFactory> {
public:
    HRESULT Z_STDCALL CreateInstance(IUnknown *, REFIID, void **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL LockServer(BOOL) override { return S_OK; }
};

using Factory = ComPtr<IClassFactory>;

Factory Make() {
    Factory object;
    EXPECT_EQ(CreateObject<CoPlain>(nullptr, IID_IClassFactory, object.PutVoid()), S_OK);
    return object;
}

ULONG RefsOf(const Factory &object) {
    object->AddRef();
    return object->Release();
}

class ComPtrTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(ModuleCount::Get(), 0); }
};

TEST_F(ComPtrTest, CopiesAddReferencesAndMovesDoNot) {
    Factory a = Make();
    EXPECT_EQ(RefsOf(a), 1U);
    Factory b(a);
    EXPECT_EQ(RefsOf(a), 2U);
    Factory c(std::move(b));
    EXPECT_EQ(RefsOf(a), 2U);
    EXPECT_FALSE(b);
    b = c;
    EXPECT_EQ(RefsOf(a), 3U);
    b = std::move(c);
    EXPECT_EQ(RefsOf(a), 2U);
    Factory &same = b;
    b = same;
    EXPECT_EQ(RefsOf(a), 2U);
    b = a.get();
    EXPECT_EQ(RefsOf(a), 2U);
    b = nullptr;
    EXPECT_EQ(RefsOf(a), 1U);
}

TEST_F(ComPtrTest, PutReleasesWhatWasHeld) {
    Factory a = Make();
    EXPECT_EQ(*a.Put(), nullptr);
    EXPECT_EQ(ModuleCount::Get(), 0);
}

TEST_F(ComPtrTest, AttachAndDetachPassTheReference) {
    Factory a = Make();
    IClassFactory *raw = a.Detach();
    EXPECT_FALSE(a);
    EXPECT_EQ(ModuleCount::Get(), 1);
    a.Attach(raw);
    EXPECT_EQ(RefsOf(a), 1U);
}

TEST_F(ComPtrTest, CopyToHandsOutAReference) {
    Factory a = Make();
    IClassFactory *out = nullptr;
    EXPECT_EQ(a.CopyTo(&out), S_OK);
    EXPECT_EQ(RefsOf(a), 2U);
    out->Release();
    EXPECT_EQ(a.CopyTo(nullptr), E_POINTER);
    EXPECT_EQ(Factory().CopyTo(&out), S_OK);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ComPtrTest, QueriesForOtherInterfaces) {
    Factory a = Make();
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(a.As(unknown), S_OK);
    EXPECT_EQ(QueryFor<IClassFactory>(unknown.get()), a);
    EXPECT_FALSE(QueryFor<IClassFactory>(nullptr));
    EXPECT_EQ(Factory().As(unknown), E_POINTER);
    EXPECT_FALSE(unknown);
}

}    // namespace
}    // namespace zck
