// The door of the library: class objects, the unload question, and the frame factory for hosts without frames of their own.
#include "zchromakey/module.h"

#include "frames/factory/factory.h"
#include "keying/plugin/chroma_key.h"
#include "keyobject/key_value.h"
#include "platform/class_table.h"
#include "platform/object.h"
#include "platform/status.h"

namespace {

template <class T>
HRESULT FactoryCreate(REFIID riid, void **ppv) {
    return zck::CreateObject<zck::CoClassFactory<T>>(nullptr, riid, ppv);
}

constexpr zck::ClassEntry kClasses[] = {
    {&CLSID_ZChromaKey, &FactoryCreate<zck::CCoZChromaKey>},
    {&CLSID_ZKey, &FactoryCreate<zck::CCoZKeyValue>},
};

const zck::ClassTable g_classes(kClasses);

}    // namespace

extern "C" {

HRESULT Z_STDCALL DllGetClassObject(REFCLSID rclsid, REFIID riid, void **ppv) { return zck::ClassObjectGet(rclsid, riid, ppv); }

HRESULT Z_STDCALL DllCanUnloadNow() { return zck::ModuleCount::Get() == 0 ? S_OK : S_FALSE; }

HRESULT Z_STDCALL ZFramesCreate(REFIID riid, void **ppv) {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    return zck::FrameFactoryCreate(riid, ppv);
}
}
