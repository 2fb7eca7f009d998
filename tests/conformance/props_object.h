// Settings for tests, and what calls on them answer.
#pragma once

#include <gtest/gtest.h>

#include "props/store/props_impl.h"
#include "tests/conformance/answers.h"
#include "tests/conformance/xml_model.h"
#include "xml/parser.h"

namespace conformance {

using zck::ComPtr;

constexpr HRESULT kBadIndex = static_cast<HRESULT>(0x80070585);

// An object with settings, with hooks that a test may set.
class PropsObject final : public zck::IZPropsImpl<PropsObject> {
public:
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        *ppv = riid == IID_IZProps || riid == IID_IUnknown ? this : nullptr;
        if (*ppv == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG Z_STDCALL AddRef() override { return ++m_refs; }
    ULONG Z_STDCALL Release() override { return --m_refs; }

    bool PropsForward(int32_t candidate, TextView name, ComPtr<IZProps> &other) {
        m_log += "f" + std::to_string(candidate) + "(" + Say(name) + ") ";
        if (candidate == m_forwardCandidate) other = m_forwardTo;
        return m_handled;
    }
    HRESULT PropsChanged(TextView name, TextView value) {
        m_log += "c(" + Say(name) + "," + Say(value) + ") ";
        return m_changedStatus;
    }

    zck::CPropsStore &Store() { return m_props; }
    IZProps *operator->() { return this; }
    std::string Tree() { return m_props.Root() ? Dump(*m_props.Root()) : "<none>"; }
    void Fill(std::string_view xml) {
        const zck::XMLParse::XMLNodePtr root = zck::XMLParse::CoXMLNode::Create(T("new"));
        EXPECT_EQ(zck::XMLParse::ParseXML(*root, T(xml)), S_OK);
        m_props.RootSet(root);
    }

    HRESULT Set(std::string_view name, std::string_view value) { return PropsSet(B(name).get(), B(value).get()); }
    std::string Get(std::string_view name) {
        Out out;
        const HRESULT hr = PropsGet(B(name).get(), out);
        return Line(hr, out.Said());
    }

    std::string m_log;
    int32_t m_forwardCandidate = 0;
    IZProps *m_forwardTo = nullptr;
    bool m_handled = false;
    HRESULT m_changedStatus = S_OK;

private:
    ULONG m_refs = 1;
};

inline std::string Good(const std::string &text) { return Line(S_OK, text); }
inline std::string None() { return Line(S_FALSE, "<null>"); }

// What a call answers that enumerates.
struct Item {
    HRESULT status;
    std::string name, value;
    int32_t isNode;
    bool operator==(const Item &) const = default;
};
inline std::ostream &operator<<(std::ostream &out, const Item &item) {
    return out << Line(item.status, item.name) << "=" << item.value << " " << item.isNode;
}

inline Item ItemAt(PropsObject &o, std::string_view node, int32_t index) {
    Out name, value;
    Item item{S_OK, "", "", 77};
    item.status = o->PropsGetByIndex(B(node).get(), index, name, value, &item.isNode);
    item.name = name.Said();
    item.value = value.Said();
    return item;
}

}    // namespace conformance
