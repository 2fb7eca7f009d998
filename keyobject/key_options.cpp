#include "keyobject/key_options.h"

#include "frames/factory/option_text.h"

namespace zck {
namespace {

std::optional<KeySpace> SpaceOf(TextView word) {
    constexpr TextView kWords[] = {ZCK_TEXT("RGB"), ZCK_TEXT("HLS"), ZCK_TEXT("YUV")};
    for (int32_t i = 0; i < 3; ++i) {
        if (EqualNoCase(word, kWords[i])) return static_cast<KeySpace>(i);
    }
    return std::nullopt;
}

}    // namespace

HRESULT KeyOptions::Parse(BSTR text) { return OptionsFromText(ViewOf(text), m_pairs); }

bool KeyOptions::Read(TextView name, TextView property, ValueType type, ValueData &out) const {
    if (m_pairs->AttributeRead(name, type, out)) return true;
    Bstr value;
    if (property.empty() || m_store.Get(property, value.Put()) != S_OK) return false;
    out = ValueFromText(type, value.view());
    return true;
}

int32_t KeyOptions::Int(TextView name, TextView property, int32_t fallback) const {
    ValueData data;
    return Read(name, property, ValueType::Integer, data) ? data.integer : fallback;
}

double KeyOptions::Float(TextView name, TextView property, double fallback) const {
    ValueData data;
    return Read(name, property, ValueType::Float, data) ? data.real : fallback;
}

bool KeyOptions::Bool(TextView name, bool fallback) const {
    ValueData data;
    return Read(name, {}, ValueType::Boolean, data) ? data.boolean : fallback;
}

std::optional<KeySpace> KeyOptions::Space(TextView name, TextView property) const {
    Text word;
    if (m_pairs->AttributeText(name, word)) {
        if (const std::optional<KeySpace> space = SpaceOf(word)) return space;
    }
    Bstr value;
    if (property.empty() || m_store.Get(property, value.Put()) != S_OK) return std::nullopt;
    return SpaceOf(value.view());
}

}    // namespace zck
