// `IZPersistImpl`: the configuration of a class as `IZPersist`, and over it the system's `IPersistStream`.
#pragma once

#include <atomic>

#include "platform/status.h"
#include "props/persist/configuration.h"
#include "props/persist/stream_text.h"
#include "xml/document.h"
#include "xml/writer.h"
#include "zchromakey/persist.h"

namespace zck {

/// Does the framing: parameters, root node, file or text. `T` brings
///
///     HRESULT PersistTransfer(Transfer, TextView object, const XMLNodePtr &root, TextView path, const XMLNodePtr &param);
///     static const CLSID &PersistClassId();
///
/// The first moves data between the object and the tree; `path` is the file in question, empty for none, and the nodes live for
/// the call only. `T` may hide `PersistNode` to give a node of its own in place of the fresh root. No lock is held while
/// `T` is called; any thread may call.
///
/// `T` answers queries for the stream side by `PersistViewFind`.
template <class T, class XMLNodePtr>
class IZPersistImpl : public IZPersist, public IPersistStream {
public:
    HRESULT Z_STDCALL PersistSaveToFile(BSTR _bsObject, BSTR _bsFileName, BSTR _bsSaveParam) override {
        const TextView file = ViewOf(_bsFileName);
        if (file.empty()) return E_INVALIDARG;
        return Guarded([&] {
            PersistParams params;
            HRESULT hr = params.Read(_bsSaveParam);
            if (FAILED(hr)) return hr;
            params.PathDefault(file);
            const XMLNodePtr root = RootFor(Transfer::Save);
            hr = Owner()->PersistTransfer(Transfer::Save, ViewOf(_bsObject), root, params.Path(), params.Node());
            return FAILED(hr) ? hr : XMLParse::SaveFile(*root, file, params.Unicode());
        });
    }

    HRESULT Z_STDCALL PersistSaveToString(BSTR _bsObject, BSTR *_pbsXMLDesc, BSTR _bsSaveParam) override {
        if (_pbsXMLDesc == nullptr) return E_POINTER;
        *_pbsXMLDesc = nullptr;
        return Guarded([&] {
            PersistParams params;
            HRESULT hr = params.Read(_bsSaveParam);
            if (FAILED(hr)) return hr;
            const XMLNodePtr root = RootFor(Transfer::Save);
            hr = Owner()->PersistTransfer(Transfer::Save, ViewOf(_bsObject), root, params.Path(), params.Node());
            return FAILED(hr) ? hr : XMLParse::WriteXML(*root, _pbsXMLDesc);
        });
    }

    HRESULT Z_STDCALL PersistLoad(BSTR _bsObject, BSTR _bsXMLDescOrFile, BSTR _bsLoadParam) override {
        const TextView text = ViewOf(_bsXMLDescOrFile);
        if (text.empty()) return E_INVALIDARG;
        return Guarded([&] {
            PersistParams params;
            HRESULT hr = params.Read(_bsLoadParam);
            if (FAILED(hr)) return hr;
            const XMLNodePtr root = RootFor(Transfer::Load);
            Text path;
            hr = LoadTextOrFile(*root, text, params, path);
            if (FAILED(hr)) return hr;
            if (path.empty()) path = params.Path();
            return Owner()->PersistTransfer(Transfer::Load, ViewOf(_bsObject), root, path, params.Node());
        });
    }

    HRESULT Z_STDCALL GetClassID(CLSID *pClassID) override {
        if (pClassID == nullptr) return E_POINTER;
        *pClassID = T::PersistClassId();
        return S_OK;
    }

    HRESULT Z_STDCALL IsDirty() override { return m_bDirty ? S_OK : S_FALSE; }

    HRESULT Z_STDCALL Load(IStream *pStm) override {
        if (pStm == nullptr) return E_POINTER;
        return Guarded([&] {
            Text text;
            const HRESULT hr = StreamTextRead(pStm, text);
            return FAILED(hr) ? hr : PersistLoad(nullptr, Bstr(text).get(), nullptr);
        });
    }

    HRESULT Z_STDCALL Save(IStream *pStm, BOOL fClearDirty) override {
        if (pStm == nullptr) return E_POINTER;
        Bstr text;
        const HRESULT hr = PersistSaveToString(nullptr, text.Put(), nullptr);
        if (FAILED(hr)) return hr;
        if (fClearDirty != 0) m_bDirty = false;
        return StreamTextWrite(pStm, text.view());
    }

    HRESULT Z_STDCALL GetSizeMax(ULARGE_INTEGER *pcbSize) override {
        if (pcbSize == nullptr) return E_POINTER;
        pcbSize->QuadPart = 0;
        Bstr text;
        const HRESULT hr = PersistSaveToString(nullptr, text.Put(), nullptr);
        if (SUCCEEDED(hr)) pcbSize->QuadPart = sizeof(OLECHAR) * text.view().size() + kSizeMaxRoom;
        return hr;
    }

    /// Nothing: each call has a root of its own.
    XMLNodePtr PersistNode() { return {}; }

protected:
    IZPersistImpl() = default;
    ~IZPersistImpl() = default;

    /// For `InterfaceFind` of `T`: the views that are not `IZPersist`.
    void *PersistViewFind(REFIID riid) noexcept {
        const bool known = riid == IID_IPersistStream || riid == IID_IPersist;
        return known ? static_cast<IPersistStream *>(this) : nullptr;
    }

    /// There is something that no stream has seen. Nothing here ever sets it.
    std::atomic<bool> m_bDirty{false};

private:
    /// Bytes that a stream needs besides the text: a count and a zero, with room to spare.
    static constexpr uint64_t kSizeMaxRoom = 16;

    T *Owner() noexcept { return static_cast<T *>(this); }

    XMLNodePtr RootFor(Transfer direction) {
        XMLNodePtr own = Owner()->PersistNode();
        if (own) return own;
        return direction == Transfer::Save ? SavingRoot() : LoadingRoot();
    }
};

}    // namespace zck

template <class T, class XMLNodePtr>
struct ZIidHolder<zck::IZPersistImpl<T, XMLNodePtr>> {
    static const IID &Get() { return IID_IZPersist; }
};
