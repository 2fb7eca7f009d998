#include "props/persist/configuration.h"

#include "platform/files.h"
#include "xml/attribute_list.h"
#include "xml/document.h"
#include "xml/parser.h"

namespace zck {
namespace {

constexpr TextView kPath = ZCK_TEXT("path");

}    // namespace

HRESULT PersistParams::Read(BSTR list) {
    m_node = XMLParse::CoXMLNode::Create(ZCK_TEXT("param"));
    HRESULT hr = S_OK;
    XMLParse::ParseAttributes(*m_node, ViewOf(list), XMLParse::kListOverwrite, XMLParse::ListNames::Paths,
                              XMLParse::BareNames::Drop, &hr);
    return hr;
}

Text PersistParams::Path() const {
    Text path;
    m_node->AttributeText(kPath, path);
    return path;
}

void PersistParams::PathDefault(TextView path) { m_node->AttributeSet(kPath, TypedValue(path), XMLParse::Existing::Keep); }

bool PersistParams::Unicode() const { return m_node->BoolGet(ZCK_TEXT("unicode")); }

XMLParse::XMLNodePtr SavingRoot() { return XMLParse::CoXMLNode::Create(ZCK_TEXT("m_config")); }

XMLParse::XMLNodePtr LoadingRoot() { return XMLParse::CoXMLNode::Create(ZCK_TEXT("ov-root")); }

HRESULT LoadTextOrFile(XMLParse::CoXMLNode &root, TextView text, PersistParams &params, Text &filePath) {
    if (!FileExists(text)) return XMLParse::ParseXML(root, text);
    const HRESULT hr = XMLParse::LoadFile(root, text);
    if (FAILED(hr)) return hr;
    filePath = text;
    params.PathDefault(text);
    return S_OK;
}

}    // namespace zck
