// An object that is nothing but its settings, and `IZProps` with plain characters.
#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <string>

#include "platform/object.h"
#include "props/store/props_impl.h"
#include "tests/props/values/say.h"

namespace zck {

class CPropsObject : public CoObject<IZPropsImpl<CPropsObject>> {
public:
    CPropsStore &Store() { return m_props; }

    /// The forwarding hook: names that start with `m_prefix` belong to the other object.
    bool PropsForward(int32_t candidate, TextView name, ComPtr<IZProps> &other) {
        const std::lock_guard guard(m_notes);
        m_asked += candidate == 0 ? "0" : "1";
        if (candidate != m_candidate || !StartsWithNoCase(name, m_prefix)) return false;
        other = m_other;
        return m_handled;
    }
    HRESULT PropsChanged(TextView name, TextView value) {
        const std::lock_guard guard(m_notes);
        m_changed += Say(name) + "=" + Say(value) + ";";
        return m_changedStatus;
    }

    CriticalSection m_notes;
    ComPtr<IZProps> m_other;
    int32_t m_candidate = 1;
    Text m_prefix{ZCK_TEXT("other.")};
    bool m_handled = true;
    std::string m_asked;
    std::string m_changed;
    HRESULT m_changedStatus = S_OK;
};

class PropsTest : public testing::Test {
protected:
    PropsTest() {
        EXPECT_EQ(CreateObject<CPropsObject>(nullptr, IID_IZProps, reinterpret_cast<void **>(m_props.Put())), S_OK);
        m_object = static_cast<CPropsObject *>(m_props.get());
    }

    static Bstr Of(std::string_view text) { return Bstr(In(text)); }

    HRESULT Set(std::string_view name, std::string_view value) { return m_props->PropsSet(Of(name).get(), Of(value).get()); }
    /// The text, or the status in angle brackets when it is not `S_OK`.
    std::string Get(std::string_view name) {
        Bstr value;
        const HRESULT hr = m_props->PropsGet(Of(name).get(), value.Put());
        if (hr != S_OK) {
            EXPECT_FALSE(value) << name;
            return Status(hr);
        }
        return Say(value.view());
    }
    std::string Count(std::string_view node) {
        int32_t count = -7;
        const HRESULT hr = m_props->PropsGetCount(Of(node).get(), &count);
        return hr == S_OK ? std::to_string(count) : Status(hr);
    }
    /// "name=value", with a "/" behind for a node.
    std::string At(std::string_view node, int32_t index) {
        Bstr name;
        Bstr value;
        int32_t isNode = -7;
        const HRESULT hr = m_props->PropsGetByIndex(Of(node).get(), index, name.Put(), value.Put(), &isNode);
        if (hr != S_OK) return Status(hr);
        return Say(name.view()) + "=" + Say(value.view()) + (isNode != 0 ? "/" : "");
    }
    std::string Info(std::string_view name, eZInfoType type) {
        Bstr info;
        const HRESULT hr = m_props->PropsInfoGet(Of(name).get(), type, info.Put());
        return hr == S_OK ? Say(info.view()) : Status(hr);
    }
    HRESULT Remove(std::string_view name) { return m_props->PropsRemove(Of(name).get()); }

    static std::string Status(HRESULT hr) {
        char text[16];
        std::snprintf(text, sizeof(text), "<%08X>", static_cast<uint32_t>(hr));
        return text;
    }

    static constexpr const char *kAbsent = "<00000001>";
    static constexpr const char *kBadArgument = "<80070057>";
    static constexpr const char *kBadIndex = "<80070585>";

    ComPtr<IZProps> m_props;
    CPropsObject *m_object = nullptr;
};

}    // namespace zck
