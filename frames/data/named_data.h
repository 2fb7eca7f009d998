// `NamedData`: what a frame carries by name: ancillary data, text attributes and objects.
#pragma once

#include <mutex>
#include <shared_mutex>

#include "frames/data/packed_data.h"
#include "platform/sync.h"

namespace zck {

using TextMap = NameMap<Text>;
using ObjectMap = NameMap<ComPtr<IUnknown>>;

struct NamedMaps {
    DataMap data;
    TextMap texts;
    ObjectMap objects;
};

/// The three maps and their lock. Any thread; no lock is held while an object of others is called or released. Operations
/// that store may throw `std::bad_alloc`. Indices outside of the map give `ERROR_INVALID_INDEX` as a status, names that are
/// not there `ERROR_FILE_NOT_FOUND`.
class NamedData {
public:
    struct Counts {
        int32_t data;
        int32_t objects;
        int32_t texts;
    };
    Counts CountsGet() const;

    /// Entries are handed out counted, so that they outlive their place in the map.
    HRESULT DataGet(TextView name, DataBlobPtr &blob) const;
    /// The name may be null.
    HRESULT DataGetByIndex(int32_t index, BSTR *name, DataBlobPtr &blob) const;
    /// Stores `size` bytes, zeros from a null address; with 0 the eight bytes of a value. A negative size removes: `S_FALSE`
    /// when there was nothing. `E_INVALIDARG` for an empty name.
    HRESULT DataSet(TextView name, int32_t size, const void *bytes);
    void DataClear();
    /// The packed form of all entries with code 0, else the bytes of one.
    HRESULT DataPack(int32_t code, int32_t &size, void *&block) const;
    /// Replaces all entries. `E_INVALIDARG` for a null block of bytes, and then nothing is changed.
    HRESULT DataUnpack(const uint8_t *packed, int32_t size);
    /// Replaces all entries by what the packed form of the other's keeps; `S_FALSE`, and no change, when it has none.
    HRESULT DataTakeCoded(const NamedData &source);

    HRESULT TextGet(TextView name, BSTR *text) const;
    HRESULT TextGetByIndex(int32_t index, BSTR *name, BSTR *text) const;
    /// The word for removal is the only value that is stored; every other value removes the name: `S_FALSE` when there was
    /// nothing. Text comes in with clones and stored frames, and hosts clear names with this operation.
    HRESULT TextSet(TextView name, TextView text);

    HRESULT ObjectGet(TextView name, ComPtr<IUnknown> &object) const;
    HRESULT ObjectGetByIndex(int32_t index, BSTR *name, ComPtr<IUnknown> &object) const;
    /// Null is stored like any object.
    void ObjectSet(TextView name, ComPtr<IUnknown> object);
    void ObjectsClear();

    /// Takes data and texts of another in place of the own.
    void TakeNamed(const NamedData &source);
    /// Runs `also` and adds entries to those that are there, both at one moment; equal names are replaced in their place, and
    /// what they held is left in `maps`.
    template <class Also>
    void Join(NamedMaps &maps, Also &&also) {
        const std::lock_guard lock(m_lock);
        also();
        JoinHere(maps);
    }
    void TextAdd(TextView name, TextView text);

    /// Runs `body` with the maps while they cannot change. It calls nothing of others.
    template <class Body>
    auto Read(Body &&body) const {
        const std::shared_lock lock(m_lock);
        return body(m_maps);
    }

private:
    void JoinHere(NamedMaps &maps);

    mutable FrameRWLock m_lock;
    NamedMaps m_maps;
};

}    // namespace zck
