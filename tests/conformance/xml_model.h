// Trees of nodes and their text, worked out the slow way.
#pragma once

#include <string>
#include <vector>

#include "tests/conformance/text_tools.h"
#include "xml/node.h"

namespace conformance {

uint64_t ModelKey(TextView name);

struct ModelNode {
    Text name;    // for a text child the text
    bool isText = false;
    std::vector<std::pair<Text, Text>> attributes;
    std::vector<ModelNode> children;

    Text *Attribute(TextView key);
    void Set(TextView key, TextView value, bool overwrite = true);
    ModelNode *Child(TextView key, int32_t nth = 0);
    Text *TextChild();
    void TextSet(TextView text);
    void Append(TextView text);
};

// Everything of a tree in one line.
std::string Dump(const ModelNode &node);
std::string Dump(const zck::XMLParse::XMLNodeImpl &node);

Text ModelDecode(TextView text, bool keepBlank);
// Gives whether a pair was read.
bool ModelList(ModelNode &node, TextView text, int mode, bool storeBare = false);
Text ModelStrip(TextView text);
// The root's content without the root's tag when `noRootTag`. Gives false when there is no tag; `end` is in the stripped text.
bool ModelParse(ModelNode &node, TextView stripped, size_t &end, bool noRootTag, bool rawText);
Text ModelWrite(const ModelNode &node, int depth = 0);
Text ModelQuote(TextView value);
int ModelUtf16Test(const std::string &bytes, double ratio);

}    // namespace conformance
