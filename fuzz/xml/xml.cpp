// Bytes of a file that become a tree, and the tree's text that becomes a tree again.
#include <algorithm>
#include <string_view>
#include <vector>

#include "fuzz/support/foreign_text.h"
#include "fuzz/support/trees.h"
#include "xml/chars.h"
#include "xml/decode.h"
#include "xml/limits.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace zck::XMLParse {
namespace {

bool Has(TextView text, TextView part) { return text.find(part) != TextView::npos; }
bool HasQuote(TextView text) { return text.find_first_of(ZCK_TEXT("'\"")) != TextView::npos; }
/// What a reader strips before it looks at anything else.
bool HasComment(TextView text) { return Has(text, ZCK_TEXT("<!--")) || Has(text, ZCK_TEXT("<?")); }

bool NameComesBack(TextView name) { return !HasQuote(name) && !name.starts_with('!') && !name.starts_with('?'); }

bool AttributeComesBack(TextView name, TextView value) {
    const bool bothQuotes = Has(value, ZCK_TEXT("'")) && Has(value, ZCK_TEXT("\""));
    return !HasQuote(name) && !Has(name, ZCK_TEXT(">")) && !bothQuotes && !HasComment(name) && !HasComment(value);
}

bool TextComesBack(TextView text) {
    const bool trimmed = Trim(text, IsSpaceNoBlank).size() != text.size();
    return !trimmed && text.find_first_not_of(' ') != TextView::npos &&
           text.find_first_of(ZCK_TEXT("\r\n\t")) == TextView::npos;
}

/// The writer escapes nothing in names and values, and the reader folds white space: only such trees come back whole.
bool ComesBack(const XMLNodePtr &root) {
    bool whole = true;
    fuzz::ForEachNode(root, [&](const XMLNodePtr &node) {
        const Text name = node->NameGet();
        if (node->IsTextNode()) {
            whole = whole && TextComesBack(name);
            return;
        }
        whole = whole && NameComesBack(name);
        Text value;
        Text attribute;
        for (size_t i = 0; whole && node->AttributeAt(i, attribute, value); ++i) whole = AttributeComesBack(attribute, value);
    });
    return whole;
}

void WalkDecoded(TextView text) {
    if (text.empty()) return;
    std::string bytes = "\xFF\xFE";
    for (const OLECHAR unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    // Too short to be tried as units.
    if (bytes.size() >= 3) fuzz::Require(DecodeBytes(bytes) == text, "16-bit text comes back");
    const std::string utf8 = Utf8FromText(text);
    if (TextFromUtf8(utf8) != text || text.front() == 0xFEFF) return;    // lone surrogates
    fuzz::Require(DecodeBytes("\xEF\xBB\xBF" + utf8) == text, "UTF-8 comes back");
}

void WalkTree(const XMLNodePtr &tree) {
    fuzz::RequireWhole(tree, kDepthMax);
    const Text written = XMLText(*tree);
    const Text inLine = XMLText(*tree, -1);
    fuzz::Require(XMLText(*tree->CopyTree(tree->NameGet())) == written, "a copy is written as its original");
    const XMLNodePtr again = CoXMLNode::Create(ZCK_TEXT("again"));
    const HRESULT hr = ParseXML(*again, written);
    fuzz::Require(hr == S_OK || hr == E_INVALIDARG, "a written tree is read");
    if (!ComesBack(tree)) return;
    fuzz::Require(hr == S_OK && XMLText(*again) == written, "a tree comes back");
    fuzz::Require(ParseXML(*again, inLine) == S_OK && XMLText(*again) == written, "a tree comes back from one line");
}

void Walk(std::string_view bytes) {
    const Text text = DecodeBytes(bytes);
    fuzz::Require(text.size() <= 2 * bytes.size(), "decoded text has its bound");
    WalkDecoded(text);
    const XMLNodePtr tree = CoXMLNode::Create(ZCK_TEXT("former"));
    const HRESULT hr = ParseXML(*tree, text);
    fuzz::Require(hr == S_OK || hr == E_INVALIDARG, "reading has two ends");
    if (hr == S_OK) {
        WalkTree(tree);
    } else {
        fuzz::Require(XMLText(*tree) == ZCK_TEXT("<former/>"), "a failed reading leaves an empty node");
    }
    // The content of a node, in pieces that end where the reader says.
    const XMLNodePtr content = CoXMLNode::Create(ZCK_TEXT("a"));
    for (const bool raw : {false, true}) {
        size_t end = text.size() / 2;
        fuzz::Require(ParseXML(*content, text, &end, true, raw) == S_OK, "content is always read");
        fuzz::Require(end <= text.size() / 2, "the end lies in the text");
        fuzz::Require(content->NameGet() == ZCK_TEXT("a"), "content takes no name");
        fuzz::RequireWhole(content, kDepthMax);
    }
}

}    // namespace
}    // namespace zck::XMLParse

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::XMLParse::Walk({reinterpret_cast<const char *>(data), size});
    return 0;
}
