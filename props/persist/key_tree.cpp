#include "props/persist/key_tree.h"

#include <algorithm>

#include "keying/key/key.h"

namespace zck {
namespace {

using XMLParse::CoXMLNode;
using XMLParse::XMLNodePtr;

constexpr TextView kKey = ZCK_TEXT("key");
constexpr TextView kAdjust = ZCK_TEXT("adjust");
constexpr TextView kType = ZCK_TEXT("type");
constexpr TextView kKeys = ZCK_TEXT("keys");
constexpr TextView kColorCancel = ZCK_TEXT("color_cancel");

enum class Form { Hexadecimal, Decimal };

struct EntryField {
    TextView name;
    int32_t SINGLE_KEY::*field;
    Form form = Form::Decimal;
};

/// In the order of the file, as all tables here.
constexpr EntryField kEntryFields[] = {
    {ZCK_TEXT("value"), &SINGLE_KEY::nValue, Form::Hexadecimal},
    {ZCK_TEXT("delta"), &SINGLE_KEY::nDelta, Form::Hexadecimal},
    {ZCK_TEXT("smooth"), &SINGLE_KEY::nSmoothRange},
    {ZCK_TEXT("alpha"), &SINGLE_KEY::nAlpha},
    {ZCK_TEXT("cancel.range"), &SINGLE_KEY::nCancelRange},
    {ZCK_TEXT("cancel.power"), &SINGLE_KEY::nCancelPower},
    {ZCK_TEXT("cancel.chroma"), &SINGLE_KEY::nCancelChroma},
    {ZCK_TEXT("cancel.luma"), &SINGLE_KEY::nCancelLuma},
    {ZCK_TEXT("cancel.alpha"), &SINGLE_KEY::nCancelAlpha},
    {ZCK_TEXT("reverse_key"), &SINGLE_KEY::nReverseKey},
};

struct RootField {
    TextView name;
    int32_t CHROMA_KEY_RAW::*field;
};

constexpr RootField kRootFields[] = {
    {ZCK_TEXT("transparent.min"), &CHROMA_KEY_RAW::nMinTransparent},
    {ZCK_TEXT("transparent.max"), &CHROMA_KEY_RAW::nMaxTransparent},
    {ZCK_TEXT("edges_smooth"), &CHROMA_KEY_RAW::nEdgesSmooth},
    {kColorCancel, &CHROMA_KEY_RAW::bColorCancel},
    {ZCK_TEXT("interlaced"), &CHROMA_KEY_RAW::nInterlacedVideo},
    {ZCK_TEXT("inverse"), &CHROMA_KEY_RAW::nInverseKey},
};

/// Calls `visit(path, field)` for the values of an adjustment in the order of writing. The name "transparent" stands there
/// twice: the second value overwrites the first one in its place, and reading gives both fields that value.
template <class Adjust, class Visit>
void ForEachAdjust(Adjust &adjust, Visit visit) {
    visit(ZCK_TEXT("power"), adjust.dblPower);
    visit(ZCK_TEXT("transparent"), adjust.dblTransparent);
    visit(ZCK_TEXT("colors"), adjust.dblColors);
    visit(ZCK_TEXT("smooth"), adjust.dblSmooth);
    visit(ZCK_TEXT("min_trans"), adjust.dblMinTransparent);
    visit(ZCK_TEXT("max_trans"), adjust.dblMaxTransparent);
    visit(ZCK_TEXT("exc_power"), adjust.dblExclPower);
    visit(ZCK_TEXT("transparent"), adjust.dblExclTransparent);
    visit(ZCK_TEXT("color::range"), adjust.colAdjust.dblCancelRange);
    visit(ZCK_TEXT("color::power"), adjust.colAdjust.dblCancelPower);
    visit(ZCK_TEXT("color::chroma"), adjust.colAdjust.dblCancelChroma);
    visit(ZCK_TEXT("color::luma"), adjust.colAdjust.dblCancelLuma);
    visit(ZCK_TEXT("color::alpha"), adjust.colAdjust.dblCancelAlpha);
    visit(ZCK_TEXT("range::rhy"), adjust.rangeAdjust.dblRangeR_H_Y);
    visit(ZCK_TEXT("range::glu"), adjust.rangeAdjust.dblRangeG_L_U);
    visit(ZCK_TEXT("range::bsv"), adjust.rangeAdjust.dblRangeB_S_V);
}

void EntryToNode(const SINGLE_KEY &entry, CoXMLNode &node) {
    for (const EntryField &f : kEntryFields) {
        if (f.form == Form::Hexadecimal) {
            node.Hex32Set(f.name, static_cast<uint32_t>(entry.*f.field));
        } else {
            node.IntSet(f.name, entry.*f.field);
        }
    }
}

SINGLE_KEY EntryFromNode(CoXMLNode &node) {
    SINGLE_KEY entry = {};
    for (const EntryField &f : kEntryFields) {
        entry.*f.field = f.form == Form::Hexadecimal ? static_cast<int32_t>(node.Hex32Get(f.name)) : node.IntGet(f.name);
    }
    return entry;
}

void EntriesFromChildren(const CoXMLNode &root, CHROMA_KEY_RAW &raw) {
    const std::vector<XMLNodePtr> children = root.ChildrenGet();
    if (children.empty()) return;
    const int32_t used = KeysUsed(raw);
    for (int32_t i = 0; i < used; ++i) {
        const XMLNodePtr &child = children[std::min(static_cast<size_t>(i), children.size() - 1)];
        // A text child of that wording has no attributes, and so leaves the entry 0 as well.
        if (EqualNoCase(child->NameGet(), kKey)) raw.arrKeys[i] = EntryFromNode(*child);
    }
}

}    // namespace

void KeyToTree(const CHROMA_KEY_RAW &raw, const CK_ADJUST &adjust, CoXMLNode &root) {
    root.IntSet(kType, raw.eType);
    // As it stands in the record, also where it is more than the elements that follow.
    root.IntSet(kKeys, raw.nKeysUsed);
    for (int32_t i = 0; i < KeysUsed(raw); ++i) EntryToNode(raw.arrKeys[i], *root.ChildAdd(kKey));
    for (const RootField &f : kRootFields) {
        if (f.name == kColorCancel) {
            root.BoolSet(f.name, raw.*f.field != 0);
        } else {
            root.IntSet(f.name, raw.*f.field);
        }
    }
    const XMLNodePtr node = root.ChildAdd(kAdjust);
    ForEachAdjust(adjust, [&](TextView path, double value) { node->FloatSet(path, value); });
}

CHROMA_KEY_RAW KeyFromTree(CoXMLNode &root) {
    CHROMA_KEY_RAW raw = {};
    raw.eType = static_cast<eCK_Type>(root.IntGet(kType));
    raw.nKeysUsed = std::min(root.IntGet(kKeys), kKeysMax);
    EntriesFromChildren(root, raw);
    for (const RootField &f : kRootFields) raw.*f.field = f.name == kColorCancel ? root.BoolGet(f.name) : root.IntGet(f.name);
    return raw;
}

void AdjustFromTree(CoXMLNode &root, CK_ADJUST &adjust) {
    const XMLNodePtr node = root.ChildFind(kAdjust);
    if (!node) return;
    ForEachAdjust(adjust, [&](TextView path, double &value) { value = node->FloatGet(path, value); });
}

}    // namespace zck
