#include "platform/class_table.h"

#include <span>

#include "platform/com_ptr.h"
#include "platform/status.h"

namespace zck {
namespace {

std::span<const ClassEntry> g_classes;

}    // namespace

ClassTable::ClassTable(const ClassEntry *entries, size_t count) noexcept { g_classes = {entries, count}; }

ClassTable::~ClassTable() { g_classes = {}; }

HRESULT ClassObjectGet(REFCLSID clsid, REFIID riid, void **ppv) noexcept {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    for (const ClassEntry &entry : g_classes) {
        if (clsid == *entry.clsid) return entry.factory(riid, ppv);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT ClassInstanceCreate(REFCLSID clsid, REFIID riid, void **ppv) noexcept {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    ComPtr<IClassFactory> factory;
    const HRESULT hr = ClassObjectGet(clsid, IID_IClassFactory, factory.PutVoid());
    return FAILED(hr) ? hr : factory->CreateInstance(nullptr, riid, ppv);
}

}    // namespace zck
