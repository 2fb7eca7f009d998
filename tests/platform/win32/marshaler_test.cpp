// Pointers pass between apartments as they are.
#include <gtest/gtest.h>

#include <thread>

#include "platform/com_ptr.h"
#include "platform/object.h"

namespace zck {
namespace {

class CoPlain : public CoObject<IClassFactory> {
public:
    HRESULT Z_STDCALL CreateInstance(IUnknown *, REFIID, void **) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL LockServer(BOOL) override { return S_OK; }
};

TEST(MarshalerTest, IsAnInterfaceOfTheObject) {
    ComPtr<IClassFactory> object;
    ASSERT_EQ(CreateObject<CoPlain>(nullptr, IID_IClassFactory, object.PutVoid()), S_OK);
    ComPtr<IUnknown> marshaler;
    ASSERT_EQ(object->QueryInterface(IID_IMarshal, marshaler.PutVoid()), S_OK);
    EXPECT_EQ(QueryFor<IUnknown>(marshaler.get()), QueryFor<IUnknown>(object.get()));
    EXPECT_EQ(QueryFor<IClassFactory>(marshaler.get()), object);
    object.Reset();
    EXPECT_EQ(ModuleCount::Get(), 1) << "the marshaler's reference is one on the object";
    marshaler.Reset();
    EXPECT_EQ(ModuleCount::Get(), 0);
}

TEST(MarshalerTest, OtherApartmentGetsTheSamePointer) {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    ComPtr<IClassFactory> object;
    ASSERT_EQ(CreateObject<CoPlain>(nullptr, IID_IClassFactory, object.PutVoid()), S_OK);
    ComPtr<IStream> stream;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IClassFactory, object.get(), stream.Put()), S_OK);
    const void *seen = nullptr;
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        IClassFactory *there = nullptr;
        if (SUCCEEDED(CoGetInterfaceAndReleaseStream(stream.Detach(), IID_IClassFactory, reinterpret_cast<void **>(&there)))) {
            seen = there;
            there->Release();
        }
        CoUninitialize();
    }).join();
    EXPECT_EQ(seen, object.get());
    object.Reset();
    EXPECT_EQ(ModuleCount::Get(), 0);
    CoUninitialize();
}

}    // namespace
}    // namespace zck
