// What holds for every tree.
#pragma once

#include <map>
#include <vector>

#include "fuzz/support/foreign_text.h"
#include "xml/name_key.h"
#include "xml/node.h"

namespace zck::fuzz {

/// Parents before their children; no recursion.
template <class Visit>
void ForEachNode(const XMLParse::XMLNodePtr &root, Visit visit) {
    std::vector<XMLParse::XMLNodePtr> open{root};
    while (!open.empty()) {
        const XMLParse::XMLNodePtr node = open.back();
        open.pop_back();
        visit(node);
        for (XMLParse::XMLNodePtr &child : node->ChildrenGet()) open.push_back(std::move(child));
    }
}

/// Children know their parent and are found by their names, attributes by theirs; no two attributes have one name.
inline void RequireWhole(const XMLParse::XMLNodePtr &root, size_t depthMax) {
    ForEachNode(root, [&](const XMLParse::XMLNodePtr &node) {
        std::map<uint64_t, int32_t> seen;
        for (const XMLParse::XMLNodePtr &child : node->ChildrenGet()) {
            Require(child->ParentGet().get() == node.get(), "a child knows its parent");
            if (child->IsTextNode()) {
                Require(child->ChildCount(XMLParse::Children::All) == 0, "a text has no children");
                continue;
            }
            const Text name = child->NameGet();
            Require(!name.empty(), "a child has a name");
            Require(node->ChildFind(name, seen[XMLParse::NameKey(name)]++).get() == child.get(), "a child is found");
        }
        std::map<uint64_t, int32_t> names;
        Text name;
        Text value;
        for (size_t i = 0; node->AttributeAt(i, name, value); ++i) {
            Require(!name.empty() && ++names[XMLParse::NameKey(name)] == 1, "an attribute has a name of its own");
        }
        Require(names.size() == node->AttributeCount(), "attributes are counted");
    });
    size_t depth = 0;
    std::vector<XMLParse::XMLNodePtr> level{root};
    for (; !level.empty(); ++depth) {
        std::vector<XMLParse::XMLNodePtr> below;
        for (const XMLParse::XMLNodePtr &node : level) {
            for (XMLParse::XMLNodePtr &child : node->ChildrenGet(XMLParse::Children::Elements))
                below.push_back(std::move(child));
        }
        level.swap(below);
    }
    Require(depth <= depthMax, "a tree has its depth");
}

}    // namespace zck::fuzz
