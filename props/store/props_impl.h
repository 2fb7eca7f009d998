// `IZPropsImpl`: the settings of a class as `IZProps`.
#pragma once

#include "platform/com_ptr.h"
#include "platform/status.h"
#include "props/store/store.h"

namespace zck {

/// Implements `IZProps` of `T` over a store of its own. Two hooks, which `T` may hide with functions of the same form:
/// `PropsForward` may name another object that handles a property, and `PropsChanged` runs after `PropsSet`, with no
/// lock held. Any thread may call.
template <class T>
class IZPropsImpl : public IZProps {
public:
    HRESULT Z_STDCALL PropsSet(BSTR _bsPropName, BSTR _bsPropValue) override {
        return Guarded([&]() -> HRESULT {
            for (int32_t candidate = 0; candidate < kForwardCandidates; ++candidate) {
                ComPtr<IZProps> other;
                const bool handled = Owner()->PropsForward(candidate, ViewOf(_bsPropName), other);
                const HRESULT hr = other ? other->PropsSet(_bsPropName, _bsPropValue) : S_OK;
                if (other && (FAILED(hr) || handled)) return hr;
            }
            bool changed = false;
            const HRESULT hr = m_props.Set(ViewOf(_bsPropName), _bsPropValue, changed);
            return SUCCEEDED(hr) && changed ? Owner()->PropsChanged(ViewOf(_bsPropName), ViewOf(_bsPropValue)) : hr;
        });
    }

    HRESULT Z_STDCALL PropsGet(BSTR _bsPropName, BSTR *_pbsPropValue) override {
        return Answer(
            _bsPropName, [&](IZProps *other) { return other->PropsGet(_bsPropName, _pbsPropValue); },
            [&] { return m_props.Get(ViewOf(_bsPropName), _pbsPropValue); });
    }

    HRESULT Z_STDCALL PropsGetCount(BSTR _bsNodeName, int32_t *_pnCount) override {
        if (_pnCount == nullptr) return E_POINTER;
        return Answer(
            _bsNodeName, [&](IZProps *other) { return other->PropsGetCount(_bsNodeName, _pnCount); },
            [&] { return m_props.GetCount(ViewOf(_bsNodeName), _pnCount); });
    }

    HRESULT Z_STDCALL PropsGetByIndex(BSTR _bsNodeName, int32_t _nIndex, BSTR *_pbsPropName, BSTR *_pbsPropValue,
                                      int32_t *_pbNode) override {
        return Answer(
            _bsNodeName,
            [&](IZProps *other) { return other->PropsGetByIndex(_bsNodeName, _nIndex, _pbsPropName, _pbsPropValue, _pbNode); },
            [&] { return m_props.GetByIndex(ViewOf(_bsNodeName), _nIndex, _pbsPropName, _pbsPropValue, _pbNode); });
    }

    HRESULT Z_STDCALL PropsRemove(BSTR _bsPropName) override {
        if (ViewOf(_bsPropName).empty()) return E_INVALIDARG;
        return Answer(
            _bsPropName, [&](IZProps *other) { return other->PropsRemove(_bsPropName); },
            [&] { return m_props.Remove(ViewOf(_bsPropName)); });
    }

    HRESULT Z_STDCALL PropsInfoGet(BSTR _bsPropName, eZInfoType _eType, BSTR *_pbsInfo) override {
        return Answer(
            _bsPropName, [&](IZProps *other) { return other->PropsInfoGet(_bsPropName, _eType, _pbsInfo); },
            [&] { return m_props.InfoGet(ViewOf(_bsPropName), _eType, _pbsInfo); });
    }

    HRESULT Z_STDCALL PropsOptionGetCount(BSTR _bsPropName, int32_t *_pnOptionCount) override {
        return Answer(
            _bsPropName, [&](IZProps *other) { return other->PropsOptionGetCount(_bsPropName, _pnOptionCount); },
            [&] { return m_props.OptionGetCount(ViewOf(_bsPropName), _pnOptionCount); });
    }

    HRESULT Z_STDCALL PropsOptionGetByIndex(BSTR _bsPropName, int32_t _nOptionIdx, BSTR *_pbsOptionValue,
                                            BSTR *_pbsHelp) override {
        return Answer(
            _bsPropName,
            [&](IZProps *other) { return other->PropsOptionGetByIndex(_bsPropName, _nOptionIdx, _pbsOptionValue, _pbsHelp); },
            [&] { return m_props.OptionGetByIndex(ViewOf(_bsPropName), _nOptionIdx, _pbsOptionValue, _pbsHelp); });
    }

    HRESULT Z_STDCALL PropsOptionSetByIndex(BSTR _bsPropName, int32_t _nOptionInx) override {
        return Answer(
            _bsPropName, [&](IZProps *other) { return other->PropsOptionSetByIndex(_bsPropName, _nOptionInx); },
            [&]() -> HRESULT {
                Bstr item;
                const HRESULT hr = m_props.OptionGetByIndex(ViewOf(_bsPropName), _nOptionInx, item.Put(), nullptr);
                // Through the table, so that a class that overrides `PropsSet` sees it; no lock is held by now.
                return SUCCEEDED(hr) ? static_cast<IZProps *>(this)->PropsSet(_bsPropName, item.get()) : hr;
            });
    }

    HRESULT Z_STDCALL PropsOptionGet(BSTR _bsPropName, int32_t *_pnOptionIdx, BSTR *_pbsOptionValue, BSTR *_pbsHelp) override {
        return Answer(
            _bsPropName,
            [&](IZProps *other) { return other->PropsOptionGet(_bsPropName, _pnOptionIdx, _pbsOptionValue, _pbsHelp); },
            [&] { return m_props.OptionGet(ViewOf(_bsPropName), _pnOptionIdx, _pbsOptionValue, _pbsHelp); });
    }

    /// Asked twice for each call, for candidates 0 and 1. An object put into `other` answers instead; for `PropsSet` the
    /// store follows all the same when the result is false.
    bool PropsForward(int32_t, TextView, ComPtr<IZProps> &) { return false; }
    HRESULT PropsChanged(TextView, TextView) { return S_OK; }

protected:
    IZPropsImpl() = default;
    ~IZPropsImpl() = default;

    CPropsStore m_props;

private:
    static constexpr int32_t kForwardCandidates = 2;

    T *Owner() noexcept { return static_cast<T *>(this); }

    /// The other object's answer, or else the store's.
    template <class Forwarded, class Own>
    HRESULT Answer(BSTR name, Forwarded forwarded, Own own) noexcept {
        return Guarded([&]() -> HRESULT {
            for (int32_t candidate = 0; candidate < kForwardCandidates; ++candidate) {
                ComPtr<IZProps> other;
                Owner()->PropsForward(candidate, ViewOf(name), other);
                if (other) return forwarded(other.get());
            }
            return own();
        });
    }
};

}    // namespace zck

template <class T>
struct ZIidHolder<zck::IZPropsImpl<T>> {
    static const IID &Get() { return IID_IZProps; }
};
