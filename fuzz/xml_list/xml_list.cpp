// name=value text in every mode, over a node that holds something, and the list that is written of it.
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/support/foreign_text.h"
#include "fuzz/support/trees.h"
#include "platform/status.h"
#include "xml/attribute_list.h"
#include "xml/name_key.h"

namespace zck::XMLParse {
namespace {

using Pairs = std::vector<std::pair<Text, Text>>;

XMLNodePtr Before() {
    const XMLNodePtr node = CoXMLNode::Create(ZCK_TEXT("node"));
    node->AttributeSetOwn(ZCK_TEXT("a"), TypedValue(ZCK_TEXT("before")));
    node->AttributeSet(ZCK_TEXT("n::B"), ZCK_TEXT("before"));
    node->IntSet(ZCK_TEXT("C"), 12);
    return node;
}

Pairs PairsOf(const CoXMLNode &node) {
    Pairs pairs;
    Text name;
    Text value;
    for (size_t i = 0; node.AttributeAt(i, name, value); ++i) pairs.emplace_back(name, value);
    return pairs;
}

Pairs::iterator Find(Pairs &pairs, TextView name) {
    auto at = pairs.begin();
    while (at != pairs.end() && NameKey(at->first) != NameKey(name)) ++at;
    return at;
}

/// What a flat reading in `mode` makes of `pairs`, given what the list holds.
void Merge(Pairs &pairs, const Pairs &list, int32_t mode) {
    if (mode == kListReplaceAll) pairs.clear();
    for (const auto &[name, value] : list) {
        const auto at = Find(pairs, name);
        if (at == pairs.end()) {
            pairs.emplace_back(name, value);
        } else if (mode != kListKeep) {
            at->second = value;
        }
    }
}

bool HasBothQuotes(TextView value) { return value.find('\'') != TextView::npos && value.find('"') != TextView::npos; }

/// A list that is read flat, and written, and read again.
Pairs WalkFlat(TextView text, BareNames bare, Existing existing) {
    const XMLNodePtr fresh = CoXMLNode::Create(ZCK_TEXT("fresh"));
    const int32_t mode = existing == Existing::Keep ? kListKeep : kListReplaceAll;
    const bool any = ParseAttributes(*fresh, text, mode, ListNames::Flat, bare);
    Pairs pairs = PairsOf(*fresh);
    fuzz::Require(any == !pairs.empty(), "pairs are told");
    const Text written = WriteAttributes(*fresh, true);
    fuzz::Require(written.empty() == pairs.empty(), "pairs are written");
    for (auto &[name, value] : pairs) {
        if (!HasBothQuotes(value)) continue;
        std::replace(value.begin(), value.end(), OLECHAR{'"'}, OLECHAR{'\''});
    }
    ParseAttributes(*fresh, written, kListReplaceAll, ListNames::Flat);
    fuzz::Require(PairsOf(*fresh) == pairs, "a list comes back");
    fuzz::Require(WriteAttributes(*fresh, true) == written, "a list is written as it was");
    return pairs;
}

void WalkModes(TextView text, BareNames bare) {
    const Pairs last = WalkFlat(text, bare, Existing::Overwrite);
    const Pairs first = WalkFlat(text, bare, Existing::Keep);
    fuzz::Require(first.size() == last.size(), "no mode finds more");
    for (const int32_t mode : {-1, 0, 1, 2, 3}) {
        const XMLNodePtr node = Before();
        Pairs expected = PairsOf(*node);
        Merge(expected, mode == kListKeep ? first : last, mode);
        HRESULT status = E_FAIL;
        const bool any = ParseAttributes(*node, text, mode, ListNames::Flat, bare, &status);
        fuzz::Require(status == S_OK && any == !last.empty(), "a flat list is always taken");
        Pairs pairs = PairsOf(*node);
        for (auto &pair : pairs) {
            if (HasBothQuotes(pair.second)) std::replace(pair.second.begin(), pair.second.end(), OLECHAR{'"'}, OLECHAR{'\''});
        }
        fuzz::Require(pairs == expected, "a mode does what it says");
        fuzz::RequireWhole(node, 2);

        const XMLNodePtr tree = Before();
        ParseAttributes(*tree, text, mode, ListNames::Paths, bare, &status);
        fuzz::Require(status == S_OK, "a list of paths is always taken");
        fuzz::RequireWhole(tree, text.size() + 2);
        Text value;
        fuzz::Require(tree->AttributeText(ZCK_TEXT("n::b"), value), "other nodes stay");
        if (mode == kListKeep) fuzz::Require(value == ZCK_TEXT("before"), "what exists is kept");
    }
}

/// The same through the interface, with descriptions that are listed too.
void WalkInterface(TextView text) {
    const XMLNodePtr node = Before();
    const Bstr list(text);
    for (const int32_t mode : {0, 1, 2}) {
        const HRESULT hr = node->AttributesSetList(list.get(), mode);
        fuzz::Require(hr == S_OK || hr == S_FALSE, "a list is taken");
        int32_t count = -1;
        fuzz::Require(SUCCEEDED(node->AttributesGetCount(&count)) && count >= 0, "attributes are counted");
        for (int32_t i = 0; i <= count; ++i) {
            Bstr name;
            Bstr value;
            const HRESULT at = node->AttributesGetByIndex(i, name.Put(), value.Put());
            fuzz::Require(at == (i < count ? S_OK : kErrorInvalidIndex), "attributes are listed");
        }
        Bstr all;
        fuzz::Require(node->AttributesGetList(all.Put()) == S_OK, "a list is given");
        const XMLNodePtr copy = Before();
        fuzz::Require(copy->AttributesCopyFrom(node.get(), mode) == S_OK, "attributes are copied");
        if (mode == 2) {
            Bstr copied;
            copy->AttributesGetList(copied.Put());
            // Attributes of descriptions that the copy has already come in their old order.
            if (node->ChildFind(kAttributesInfo) == nullptr) fuzz::Require(copied.view() == all.view(), "a copy is whole");
        }
    }
}

}    // namespace
}    // namespace zck::XMLParse

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace zck::XMLParse;
    const zck::Text text = zck::TextFromUtf8({reinterpret_cast<const char *>(data), size});
    WalkModes(text, BareNames::Drop);
    WalkModes(text, BareNames::Store);
    WalkInterface(text);
    return 0;
}
