// What a call that gives nothing leaves in its outputs: never what stood there before.
#include "platform/status.h"
#include "tests/props/store/props_object.h"

namespace zck {
namespace {

class PropsOutputsTest : public PropsTest {
protected:
    PropsOutputsTest() { EXPECT_EQ(Set("a", "1"), S_OK); }

    /// Outputs that hold something before each call, and the call's status when all of them are empty behind it.
    template <class Call>
    HRESULT Cleared(Call call) {
        m_name = m_value = reinterpret_cast<BSTR>(&m_number);
        m_number = 7;
        const HRESULT hr = call();
        EXPECT_EQ(m_name, nullptr);
        EXPECT_EQ(m_value, nullptr);
        return hr;
    }

    BSTR m_name = nullptr;
    BSTR m_value = nullptr;
    int32_t m_number = 0;
};

TEST_F(PropsOutputsTest, OfValuesAndInformation) {
    const auto get = [&](std::string_view name) { return m_name = nullptr, m_props->PropsGet(Of(name).get(), &m_value); };
    EXPECT_EQ(Cleared([&] { return get("missing"); }), S_FALSE);
    EXPECT_EQ(Cleared([&] { return get("missing::deep"); }), S_FALSE);
    const auto info = [&](std::string_view name, eZInfoType type) {
        return m_name = nullptr, m_props->PropsInfoGet(Of(name).get(), type, &m_value);
    };
    EXPECT_EQ(Cleared([&] { return info("", eZIT_Help); }), E_INVALIDARG);
    EXPECT_EQ(Cleared([&] { return info("a", eZIT_Node); }), E_INVALIDARG);
    EXPECT_EQ(Cleared([&] { return info("a", eZIT_Help); }), S_FALSE);
    m_object->Store().RootSet(nullptr);
    EXPECT_EQ(Cleared([&] { return get("a"); }), E_FAIL);
    EXPECT_EQ(Cleared([&] { return get(""); }), E_FAIL);
    EXPECT_EQ(Cleared([&] { return info("a", eZIT_Help); }), E_FAIL);
}

TEST_F(PropsOutputsTest, OfTheEnumeration) {
    const auto at = [&](std::string_view node, int32_t index) {
        return m_props->PropsGetByIndex(Of(node).get(), index, &m_name, &m_value, &m_number);
    };
    EXPECT_EQ(Cleared([&] { return at("missing", 0); }), E_INVALIDARG);
    EXPECT_EQ(m_number, 0);
    EXPECT_EQ(Cleared([&] { return at("", 1); }), kErrorInvalidIndex);
    EXPECT_EQ(m_number, 0);
    EXPECT_EQ(Cleared([&] { return at("", -1); }), kErrorInvalidIndex);
    EXPECT_EQ(m_number, 0);
    EXPECT_EQ(Cleared([&] { return at("_info_", 0); }), kErrorInvalidIndex);
    int32_t count = 7;
    EXPECT_EQ(m_props->PropsGetCount(Of("missing").get(), &count), E_INVALIDARG);
    EXPECT_EQ(count, 0);
}

TEST_F(PropsOutputsTest, OfOptions) {
    const auto at = [&](std::string_view name) { return m_props->PropsOptionGetByIndex(Of(name).get(), 0, &m_value, &m_name); };
    EXPECT_EQ(Cleared([&] { return at("a"); }), kErrorInvalidIndex);
    EXPECT_EQ(Cleared([&] { return at(""); }), E_INVALIDARG);
    const auto now = [&](std::string_view name) {
        return m_props->PropsOptionGet(Of(name).get(), &m_number, &m_value, &m_name);
    };
    EXPECT_EQ(Cleared([&] { return now("missing"); }), kErrorFileNotFound);
    EXPECT_EQ(m_number, -1);
    EXPECT_EQ(Cleared([&] { return now(""); }), E_INVALIDARG);
    EXPECT_EQ(m_number, -1);
    int32_t count = 7;
    EXPECT_EQ(m_props->PropsOptionGetCount(nullptr, &count), E_INVALIDARG);
    EXPECT_EQ(count, 0);
}

TEST_F(PropsOutputsTest, ReservedNamesHaveNoCase) {
    EXPECT_EQ(Get("Dll-DATE"), Get("dll-date"));
    EXPECT_EQ(Get("DLL-Path"), Get("dll-path"));
    EXPECT_EQ(Set("n::m", "1"), S_OK);
    EXPECT_EQ(Remove("_ALL_Nodes_"), S_OK);
    EXPECT_EQ(Get(""), "<z-props a='1'/>");
    EXPECT_EQ(Remove("_All_PROPS_"), S_OK);
    EXPECT_EQ(Get(""), "<z-props/>");
}

}    // namespace
}    // namespace zck
