#include "frames/factory/option_text.h"

#include "xml/attribute_list.h"

namespace zck {

HRESULT OptionsFromText(TextView text, XMLParse::XMLNodePtr &options) {
    options = XMLParse::CoXMLNode::Create(ZCK_TEXT("props"));
    HRESULT hr = S_OK;
    ParseAttributes(*options, text, XMLParse::kListOverwrite, XMLParse::ListNames::Paths, XMLParse::BareNames::Drop, &hr);
    return hr;
}

uint32_t OptionColor(XMLParse::CoXMLNode &options, TextView name) {
    ValueData data;
    return options.AttributeRead(name, ValueType::Colour, data) ? data.number32 : 0;
}

}    // namespace zck
