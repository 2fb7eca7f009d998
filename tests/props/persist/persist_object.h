// An object that is nothing but a key and its configuration, and `IZPersist` with plain characters.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "keying/key/key.h"
#include "platform/files.h"
#include "platform/object.h"
#include "props/persist/key_tree.h"
#include "props/persist/persist_impl.h"
#include "tests/support/sample_key.h"
#include "tests/support/scratch_folder.h"
#include "tests/xml/say.h"
#include "xml/attribute_list.h"
#include "xml/limits.h"

namespace zck {

using test::kSampleText;
using test::SampleKey;

inline constexpr CLSID kPersistObjectClass = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0xEE}};

class CPersistObject : public CoObject<IZPersistImpl<CPersistObject, XMLParse::XMLNodePtr>> {
public:
    HRESULT PersistTransfer(Transfer direction, TextView object, const XMLParse::XMLNodePtr &root, TextView path,
                            const XMLParse::XMLNodePtr &param) {
        m_calls += std::string(direction == Transfer::Save ? "save " : "load ") + Say(object) + "|" + Say(root->NameGet()) +
                   "|" + Say(path) + "|" + Say(param->NameGet()) + "(" + Say(XMLParse::WriteAttributes(*param, false)) + ");";
        if (FAILED(m_status)) return m_status;
        if (direction == Transfer::Save) {
            KeyToTree(m_raw, m_adjust, *root);
        } else {
            m_raw = KeyFromTree(*root);
            m_adjust = AdjustFromRaw(m_raw, -1);
            AdjustFromTree(*root, m_adjust);
        }
        return S_OK;
    }
    static const CLSID &PersistClassId() { return kPersistObjectClass; }
    XMLParse::XMLNodePtr PersistNode() { return m_node; }
    void DirtySet(bool dirty) { m_bDirty = dirty; }

    CHROMA_KEY_RAW m_raw = {};
    CK_ADJUST m_adjust = AdjustDefaults();
    HRESULT m_status = S_OK;
    XMLParse::XMLNodePtr m_node;
    std::string m_calls;

protected:
    void *InterfaceFind(REFIID riid) noexcept override { return PersistViewFind(riid); }
};

/// An object and a folder that goes with the test.
class PersistTest : public testing::Test {
protected:
    PersistTest() {
        EXPECT_EQ(CreateObject<CPersistObject>(nullptr, IID_IZPersist, m_persist.PutVoid()), S_OK);
        m_object = static_cast<CPersistObject *>(m_persist.get());
    }

    std::string Path(std::string_view name) const { return m_folder.Path(name); }
    std::string Bytes(std::string_view name) const { return m_folder.Bytes(name); }
    void Put(std::string_view name, std::string_view bytes) const { m_folder.Put(name, bytes); }

    HRESULT SaveTo(std::string_view path, std::string_view param = {}, std::string_view object = {}) {
        return m_persist->PersistSaveToFile(Arg(object).get(), Arg(path).get(), Arg(param).get());
    }
    std::string SaveText() {
        Bstr text;
        EXPECT_EQ(m_persist->PersistSaveToString(nullptr, text.Put(), nullptr), S_OK);
        return Say(text.view());
    }
    HRESULT LoadFrom(std::string_view text, std::string_view param = {}, std::string_view object = {}) {
        return m_persist->PersistLoad(Arg(object).get(), Arg(text).get(), Arg(param).get());
    }
    /// The calls of the transfer step since the last question.
    std::string Calls() { return std::exchange(m_object->m_calls, {}); }

    const test::ScratchFolder m_folder;
    ComPtr<IZPersist> m_persist;
    CPersistObject *m_object = nullptr;
};

/// What two records differ in, by the number of the word; empty when they are equal.
inline std::string Difference(const CHROMA_KEY_RAW &a, const CHROMA_KEY_RAW &b) {
    int32_t left[sizeof(a) / 4];
    int32_t right[sizeof(b) / 4];
    std::memcpy(left, &a, sizeof(a));
    std::memcpy(right, &b, sizeof(b));
    std::string text;
    for (size_t i = 0; i < std::size(left); ++i) {
        if (left[i] != right[i])
            text += "word " + std::to_string(i) + ": " + std::to_string(left[i]) + ", " + std::to_string(right[i]) + "; ";
    }
    return text;
}

inline std::string Difference(const CK_ADJUST &a, const CK_ADJUST &b) {
    double left[sizeof(a) / 8];
    double right[sizeof(b) / 8];
    std::memcpy(left, &a, sizeof(a));
    std::memcpy(right, &b, sizeof(b));
    std::string text;
    for (size_t i = 0; i < std::size(left); ++i) {
        if (left[i] != right[i])
            text += "real " + std::to_string(i) + ": " + std::to_string(left[i]) + ", " + std::to_string(right[i]) + "; ";
    }
    return text;
}

}    // namespace zck
