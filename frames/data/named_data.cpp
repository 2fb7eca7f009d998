#include "frames/data/named_data.h"

#include "frames/data/data_name.h"
#include "platform/status.h"

namespace zck {
namespace {

template <class Map>
bool Holds(const Map &map, int32_t index) {
    return index >= 0 && static_cast<size_t>(index) < map.Count();
}

template <class Map>
HRESULT NameGive(const Map &map, int32_t index, BSTR *name) {
    return name != nullptr ? BstrCopyTo(map.Name(static_cast<size_t>(index)), name) : S_OK;
}

template <class Map>
void JoinOne(Map &to, Map &from) {
    for (size_t i = 0; i < from.Count(); ++i) from.At(i) = to.Set(from.Name(i), std::move(from.At(i)));
}

}    // namespace

NamedData::Counts NamedData::CountsGet() const {
    const std::shared_lock lock(m_lock);
    return {static_cast<int32_t>(m_maps.data.Count()), static_cast<int32_t>(m_maps.objects.Count()),
            static_cast<int32_t>(m_maps.texts.Count())};
}

HRESULT NamedData::DataGet(TextView name, DataBlobPtr &blob) const {
    const std::shared_lock lock(m_lock);
    const DataBlobPtr *found = m_maps.data.Find(name);
    if (found == nullptr) return kErrorFileNotFound;
    blob = *found;
    return S_OK;
}

HRESULT NamedData::DataGetByIndex(int32_t index, BSTR *name, DataBlobPtr &blob) const {
    const std::shared_lock lock(m_lock);
    if (!Holds(m_maps.data, index)) return kErrorInvalidIndex;
    blob = m_maps.data.At(static_cast<size_t>(index));
    return NameGive(m_maps.data, index, name);
}

HRESULT NamedData::DataSet(TextView name, int32_t size, const void *bytes) {
    if (name.empty()) return E_INVALIDARG;
    DataBlobPtr blob;
    if (size < 0) {
        const std::lock_guard lock(m_lock);
        return m_maps.data.Remove(name, blob) ? S_OK : S_FALSE;
    }
    const auto used = static_cast<uint32_t>(size);
    const HRESULT hr = DataBlobCreate(bytes, used == 0 ? kInlineBytes : used, used, blob);
    if (FAILED(hr)) return hr;
    const std::lock_guard lock(m_lock);
    blob = m_maps.data.Set(name, std::move(blob));
    return S_OK;
}

void NamedData::DataClear() {
    DataMap old;
    const std::lock_guard lock(m_lock);
    old.Swap(m_maps.data);
}

HRESULT NamedData::DataPack(int32_t code, int32_t &size, void *&block) const {
    if (code == 0) {
        const std::shared_lock lock(m_lock);
        return zck::DataPack(m_maps.data, size, block);
    }
    DataBlobPtr blob;
    const HRESULT hr = DataGet(NameFromCode(code), blob);
    return SUCCEEDED(hr) ? DataPackOne(*blob, size, block) : hr;
}

HRESULT NamedData::DataUnpack(const uint8_t *packed, int32_t size) {
    if (packed == nullptr && size > 0) return E_INVALIDARG;
    DataMap fresh;
    const HRESULT hr = zck::DataUnpack(packed, size, fresh);
    const std::lock_guard lock(m_lock);
    fresh.Swap(m_maps.data);
    return hr;
}

HRESULT NamedData::DataTakeCoded(const NamedData &source) {
    DataMap taken;
    {
        const std::shared_lock lock(source.m_lock);
        if (source.m_maps.data.Count() == 0) return S_FALSE;
        const HRESULT hr = zck::DataTakeCoded(source.m_maps.data, taken);
        if (FAILED(hr)) return hr;
    }
    const std::lock_guard lock(m_lock);
    taken.Swap(m_maps.data);
    return S_OK;
}

HRESULT NamedData::TextGet(TextView name, BSTR *text) const {
    const std::shared_lock lock(m_lock);
    const Text *found = m_maps.texts.Find(name);
    if (found == nullptr) return kErrorFileNotFound;
    return text != nullptr ? BstrCopyTo(*found, text) : S_OK;
}

HRESULT NamedData::TextGetByIndex(int32_t index, BSTR *name, BSTR *text) const {
    const std::shared_lock lock(m_lock);
    if (!Holds(m_maps.texts, index)) return kErrorInvalidIndex;
    Bstr copy;
    HRESULT hr = text != nullptr ? BstrCopyTo(m_maps.texts.At(static_cast<size_t>(index)), copy.Put()) : S_OK;
    if (SUCCEEDED(hr)) hr = NameGive(m_maps.texts, index, name);
    if (SUCCEEDED(hr) && text != nullptr) *text = copy.Detach();
    return hr;
}

HRESULT NamedData::TextSet(TextView name, TextView text) {
    Text old;
    if (text == ZCK_TEXT("__zf_remove__")) {
        TextAdd(name, text);
        return S_OK;
    }
    const std::lock_guard lock(m_lock);
    return m_maps.texts.Remove(name, old) ? S_OK : S_FALSE;
}

void NamedData::TextAdd(TextView name, TextView text) {
    Text value(text);
    const std::lock_guard lock(m_lock);
    value = m_maps.texts.Set(name, std::move(value));
}

HRESULT NamedData::ObjectGet(TextView name, ComPtr<IUnknown> &object) const {
    const std::shared_lock lock(m_lock);
    const ComPtr<IUnknown> *found = m_maps.objects.Find(name);
    if (found == nullptr) return kErrorFileNotFound;
    object = *found;
    return S_OK;
}

HRESULT NamedData::ObjectGetByIndex(int32_t index, BSTR *name, ComPtr<IUnknown> &object) const {
    const std::shared_lock lock(m_lock);
    if (!Holds(m_maps.objects, index)) return kErrorInvalidIndex;
    object = m_maps.objects.At(static_cast<size_t>(index));
    return NameGive(m_maps.objects, index, name);
}

void NamedData::ObjectSet(TextView name, ComPtr<IUnknown> object) {
    const std::lock_guard lock(m_lock);
    object = m_maps.objects.Set(name, std::move(object));
}

void NamedData::ObjectsClear() {
    ObjectMap old;
    const std::lock_guard lock(m_lock);
    old.Swap(m_maps.objects);
}

void NamedData::TakeNamed(const NamedData &source) {
    DataMap data;
    TextMap texts;
    {
        const std::shared_lock lock(source.m_lock);
        data = source.m_maps.data;
        texts = source.m_maps.texts;
    }
    const std::lock_guard lock(m_lock);
    data.Swap(m_maps.data);
    texts.Swap(m_maps.texts);
}

void NamedData::JoinHere(NamedMaps &maps) {
    JoinOne(m_maps.data, maps.data);
    JoinOne(m_maps.texts, maps.texts);
    JoinOne(m_maps.objects, maps.objects);
}

}    // namespace zck
