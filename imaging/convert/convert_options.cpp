#include "imaging/convert/convert_options.h"

#include <iterator>

#include "xml/attribute_list.h"

namespace zck {
namespace {

constexpr TextView kScaleTypes[] = {ZCK_TEXT("default"), ZCK_TEXT("none"), ZCK_TEXT("letter-box"), ZCK_TEXT("crop"),
                                    ZCK_TEXT("no-scale")};
static_assert(eZST_None == 1 && eZST_LetterBox == 2 && eZST_Crop == 3 && eZST_NoScale == 4);
constexpr TextView kMirrors[] = {{}, ZCK_TEXT("horz"), ZCK_TEXT("vert"), ZCK_TEXT("both")};
static_assert(kMirrorHorz == 1 && kMirrorVert == 2 && kMirrorHorzVert == 3);
constexpr TextView kTurns[] = {ZCK_TEXT("right"), ZCK_TEXT("left")};

// The values of a list, by name; each is read once.
class Options {
public:
    explicit Options(TextView text) : m_node(XMLParse::CoXMLNode::Create(ZCK_TEXT("props"))) {
        HRESULT hr = S_OK;
        ParseAttributes(*m_node, text, XMLParse::kListOverwrite, XMLParse::ListNames::Paths, XMLParse::BareNames::Drop, &hr);
        if (FAILED(hr)) m_node->AttributesClear();
    }

    /// Empty when there is no such option. The view lives until the next call.
    TextView Value(TextView name) {
        if (!m_node->AttributeText(name, m_text)) m_text.clear();
        return m_text;
    }
    template <size_t n>
    std::optional<int32_t> Keyword(TextView name, const TextView (&words)[n]) {
        const TextView value = Value(name);
        for (size_t i = 0; i < n; ++i)
            if (!value.empty() && EqualNoCase(value, words[i])) return static_cast<int32_t>(i);
        return std::nullopt;
    }
    int32_t Number(TextView name, int32_t otherwise) {
        ParseInt(Value(name), otherwise);
        return otherwise;
    }

private:
    XMLParse::XMLNodePtr m_node;
    Text m_text;
};

}    // namespace

ConvertOptions ConvertOptionsFromText(TextView text) {
    ConvertOptions result;
    if (text.empty()) return result;
    Options options(text);
    constexpr TextView kScaleType = ZCK_TEXT("scale_type");
    if (const auto type = options.Keyword(kScaleType, kScaleTypes)) result.scaleType = static_cast<eZScaleType>(*type);
    result.fitAspect = EqualNoCase(options.Value(kScaleType), ZCK_TEXT("fit_ar"));
    result.quality = options.Number(ZCK_TEXT("scaling_quality"), result.quality);
    result.field = options.Number(ZCK_TEXT("field"), result.field);
    result.mirror = options.Keyword(ZCK_TEXT("mirror"), kMirrors).value_or(0);
    result.turn = static_cast<Turn>(options.Keyword(ZCK_TEXT("rotate"), kTurns).value_or(static_cast<int32_t>(Turn::kNone)));
    result.crop = InsetsFromText(options.Value(ZCK_TEXT("crop"))).value_or(Insets{});
    return result;
}

}    // namespace zck
