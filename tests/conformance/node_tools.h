// Trees for tests, and what calls on their nodes answer.
#pragma once

#include <gtest/gtest.h>

#include "platform/com_ptr.h"
#include "tests/conformance/answers.h"
#include "tests/conformance/xml_model.h"
#include "xml/parser.h"

namespace conformance {

using zck::ComPtr;
using zck::QueryFor;

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070490);
constexpr HRESULT kBadIndex = static_cast<HRESULT>(0x80070585);

inline ComPtr<IZNode> Tree(std::string_view xml) {
    const zck::XMLParse::XMLNodePtr node = zck::XMLParse::CoXMLNode::Create(T("new"));
    EXPECT_EQ(zck::XMLParse::ParseXML(*node, T(xml)), S_OK);
    return QueryFor<IZNode>(node.get());
}

inline std::string Dump(const ComPtr<IZNode> &node) { return Dump(*zck::XMLParse::CoXMLNode::From(node.get())); }

inline ComPtr<IZNode> At(const ComPtr<IZNode> &node, std::string_view path) {
    ComPtr<IZNode> found;
    EXPECT_EQ(node->NodeChildGet(B(path).get(), 0, found.Put()), S_OK) << path;
    return found;
}

inline uint32_t RefsOf(IUnknown *object) {
    object->AddRef();
    return object->Release();
}

}    // namespace conformance
