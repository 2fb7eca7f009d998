#include "tests/conformance/key_model.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

std::string Number(int32_t v) { return std::to_string(v); }
std::string Hex(int32_t v) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(v));
    return text;
}

struct KeyField {
    const char *name;
    int32_t SINGLE_KEY::*field;
    bool hex;
};
const KeyField kKeyFields[] = {{"value", &SINGLE_KEY::nValue, true},
                               {"delta", &SINGLE_KEY::nDelta, true},
                               {"smooth", &SINGLE_KEY::nSmoothRange, false},
                               {"alpha", &SINGLE_KEY::nAlpha, false},
                               {"cancel.range", &SINGLE_KEY::nCancelRange, false},
                               {"cancel.power", &SINGLE_KEY::nCancelPower, false},
                               {"cancel.chroma", &SINGLE_KEY::nCancelChroma, false},
                               {"cancel.luma", &SINGLE_KEY::nCancelLuma, false},
                               {"cancel.alpha", &SINGLE_KEY::nCancelAlpha, false},
                               {"reverse_key", &SINGLE_KEY::nReverseKey, false}};

// The sixteen reals in the record's order; the file has them in another one.
const char *const kAdjustNames[] = {
    "power",        "transparent",  "colors",        "smooth",      "min_trans",    "max_trans",  "exc_power",  "transparent",
    "color::range", "color::power", "color::chroma", "color::luma", "color::alpha", "range::rhy", "range::glu", "range::bsv"};

double *Reals(CK_ADJUST &adjust) { return reinterpret_cast<double *>(&adjust); }

std::string ValueOf(ModelNode &node, const char *name) {
    const Text *held = node.Attribute(T(name));
    return held != nullptr ? Say(TextView(*held)) : "";
}

}    // namespace

CHROMA_KEY_RAW NoiseKey(std::mt19937 &random) {
    CHROMA_KEY_RAW raw;
    auto *words = reinterpret_cast<int32_t *>(&raw);
    for (size_t w = 0; w < sizeof raw / 4; ++w) words[w] = static_cast<int32_t>(random()) >> (random() % 32);
    raw.nKeysUsed = static_cast<int32_t>(random() % 20) - 1;
    return raw;
}

CK_ADJUST NoiseAdjust(std::mt19937 &random) {
    CK_ADJUST adjust;
    for (int i = 0; i < 16; ++i) Reals(adjust)[i] = (static_cast<double>(random() % 4001) - 2000) / 1000;
    return adjust;
}

CK_ADJUST ModelAdjustDefaults() {
    CK_ADJUST adjust;
    const double values[] = {0, 0.1, 0, 0.25, 0.4, 0.9, 0, 0.05, 1.0, 0.3, -0.25, -0.05, -0.05, 0.66, 0.66, 0.66};
    std::copy(std::begin(values), std::end(values), Reals(adjust));
    return adjust;
}

CK_ADJUST ModelAdjustFromRaw(const CHROMA_KEY_RAW &raw) {
    CK_ADJUST a = {};
    const SINGLE_KEY &key = raw.arrKeys[0];
    const double r = key.nCancelRange / 255.0;
    a.colAdjust = ModelAdjustDefaults().colAdjust;
    if (r > 0) {
        a.dblColors = r;
        a.colAdjust = {1.0, key.nCancelPower / 255.0 / r, key.nCancelChroma / 255.0 / r, key.nCancelLuma / 255.0 / r,
                       key.nCancelAlpha / 255.0 / r};
    }
    a.dblTransparent = key.nSmoothRange / 255.0;
    a.dblSmooth = raw.nEdgesSmooth / 10.0;
    a.dblMinTransparent = raw.nMinTransparent / 255.0;
    a.dblMaxTransparent = raw.nMaxTransparent / 255.0;
    return a;
}

std::string ModelKeyText(const CHROMA_KEY_RAW &raw, const CK_ADJUST &adjust) {
    const auto pair = [](const std::string &name, const std::string &value) { return " " + name + "='" + value + "'"; };
    std::string s = "<m_config" + pair("type", Number(raw.eType)) + pair("keys", Number(raw.nKeysUsed)) +
                    pair("transparent.min", Number(raw.nMinTransparent)) +
                    pair("transparent.max", Number(raw.nMaxTransparent)) + pair("edges_smooth", Number(raw.nEdgesSmooth)) +
                    pair("color_cancel", raw.bColorCancel != 0 ? "true" : "false") +
                    pair("interlaced", Number(raw.nInterlacedVideo)) + pair("inverse", Number(raw.nInverseKey)) + ">\r\n";
    for (int32_t i = 0; i < std::min(raw.nKeysUsed, 16); ++i) {
        s += "\t<key";
        for (const KeyField &f : kKeyFields) {
            const int32_t v = raw.arrKeys[i].*f.field;
            s += pair(f.name, f.hex ? Hex(v) : Number(v));
        }
        s += "/>\r\n";
    }
    const auto real = [](double v) { return ModelFloatText(v, -1); };
    const CK_COLOR_ADJUST &c = adjust.colAdjust;
    const CK_RANGE_ADJUST &r = adjust.rangeAdjust;
    s += "\t<adjust" + pair("power", real(adjust.dblPower)) + pair("transparent", real(adjust.dblExclTransparent)) +
         pair("colors", real(adjust.dblColors)) + pair("smooth", real(adjust.dblSmooth)) +
         pair("min_trans", real(adjust.dblMinTransparent)) + pair("max_trans", real(adjust.dblMaxTransparent)) +
         pair("exc_power", real(adjust.dblExclPower)) + ">\r\n";
    s += "\t\t<color" + pair("range", real(c.dblCancelRange)) + pair("power", real(c.dblCancelPower)) +
         pair("chroma", real(c.dblCancelChroma)) + pair("luma", real(c.dblCancelLuma)) + pair("alpha", real(c.dblCancelAlpha)) +
         "/>\r\n";
    s += "\t\t<range" + pair("rhy", real(r.dblRangeR_H_Y)) + pair("glu", real(r.dblRangeG_L_U)) +
         pair("bsv", real(r.dblRangeB_S_V)) + "/>\r\n";
    return s + "\t</adjust>\r\n</m_config>";
}

CHROMA_KEY_RAW ModelKeyFromTree(ModelNode &root) {
    CHROMA_KEY_RAW raw = {};
    raw.eType = static_cast<eCK_Type>(ModelInt(ValueOf(root, "type")));
    raw.nKeysUsed = std::min(ModelInt(ValueOf(root, "keys")), 16);
    for (int32_t i = 0; i < raw.nKeysUsed && !root.children.empty(); ++i) {
        ModelNode &child = root.children[std::min(static_cast<size_t>(i), root.children.size() - 1)];
        if (child.isText || ModelKey(child.name) != ModelKey(T("key"))) continue;
        for (const KeyField &f : kKeyFields) {
            const std::string s = ValueOf(child, f.name);
            raw.arrKeys[i].*f.field = f.hex ? static_cast<int32_t>(ModelHex32(s)) : ModelInt(s);
        }
    }
    raw.nMinTransparent = ModelInt(ValueOf(root, "transparent.min"));
    raw.nMaxTransparent = ModelInt(ValueOf(root, "transparent.max"));
    raw.nEdgesSmooth = ModelInt(ValueOf(root, "edges_smooth"));
    raw.bColorCancel = ModelBool(ValueOf(root, "color_cancel")) ? 1 : 0;
    raw.nInterlacedVideo = ModelInt(ValueOf(root, "interlaced"));
    raw.nInverseKey = ModelInt(ValueOf(root, "inverse"));
    return raw;
}

void ModelAdjustFromTree(ModelNode &root, CK_ADJUST &adjust) {
    ModelNode *node = root.Child(T("adjust"));
    if (node == nullptr) return;
    for (size_t i = 0; i < 16; ++i) {
        const std::string name = kAdjustNames[i];
        const size_t colons = name.find("::");
        ModelNode *owner = colons == std::string::npos ? node : node->Child(T(name.substr(0, colons)));
        const Text *held =
            owner != nullptr ? owner->Attribute(T(colons == std::string::npos ? name : name.substr(colons + 2))) : nullptr;
        if (held != nullptr) Reals(adjust)[i] = ModelFloat(Say(TextView(*held)));
    }
}

bool Same(const CHROMA_KEY_RAW &a, const CHROMA_KEY_RAW &b) { return std::memcmp(&a, &b, sizeof a) == 0; }
bool Same(const CK_ADJUST &a, const CK_ADJUST &b) { return std::memcmp(&a, &b, sizeof a) == 0; }

std::string EditedKeyText(std::mt19937 &random) {
    const char *const values[] = {"1",   "0",    "2",   "3", "-1", "16",  "20",   "16711935", "0x00FF00FF", "0xFFFFFFFF",
                                  "010", "true", "yes", "",  "x",  "50%", "0.25", "-0.05",    "99999999999"};
    const char *const roots[] = {"type",         "keys",         "keys",       "transparent.min", "transparent.max",
                                 "edges_smooth", "color_cancel", "Interlaced", "inverse",         "other"};
    const auto attribute = [&](const std::string &name) { return " " + name + "='" + OneOf(random, values) + "'"; };
    std::string s = "<" + std::string(random() % 2 == 0 ? "m_config" : "Other");
    for (const char *name : roots)
        if (random() % 4 != 0) s += attribute(name);
    s += ">";
    for (size_t k = random() % 5; k-- > 0;) {
        switch (random() % 5) {
            case 0:
                s += "text";
                break;
            case 1:
                s += "<other" + attribute("value") + "/>";
                break;
            case 2: {
                s += "<adjust";
                for (const char *name : kAdjustNames)
                    if (std::string(name).find(':') == std::string::npos && random() % 4 != 0) s += attribute(name);
                s += ">";
                if (random() % 4 != 0) s += "<color" + attribute("range") + attribute("luma") + attribute("alpha") + "/>";
                if (random() % 4 != 0) s += "<range" + attribute("rhy") + attribute("bsv") + "/>";
                s += "</adjust>";
                break;
            }
            default:
                s += random() % 2 == 0 ? "<key" : "<KEY";
                for (const KeyField &f : kKeyFields)
                    if (random() % 4 != 0) s += attribute(f.name);
                s += "/>";
        }
        if (random() % 3 == 0) s += "\r\n\t";
    }
    return s + (random() % 2 == 0 ? "</m_config></other>" : "");
}

}    // namespace conformance
