// Paths to nodes and attributes, against a model that walks the tree by hand.
#include <gtest/gtest.h>

#include <random>

#include "tests/conformance/node_tools.h"

namespace conformance {
namespace {

std::vector<Text> Elements(const Text &path) {
    std::vector<Text> parts(1);
    for (size_t i = 0; i < path.size(); ++i) {
        if (path.compare(i, 2, T("::")) == 0) {
            parts.emplace_back();
            ++i;
        } else {
            parts.back() += path[i];
        }
    }
    return parts;
}

ModelNode *Step(ModelNode *node, const Text &element, bool create) {
    const size_t bracket = element.find(OLECHAR{'('});
    const Text name = element.substr(0, bracket);
    const int32_t nth = bracket == Text::npos ? 0 : element[bracket + 1] - '0';
    ModelNode *child = node->Child(name, nth);
    if (child != nullptr || !create) return child;
    node->children.push_back({name, false, {}, {}});
    return &node->children.back();
}

ModelNode *Walk(ModelNode *node, const std::vector<Text> &elements, size_t count, bool create) {
    for (const Text &e : elements)
        if (e.empty()) return nullptr;
    for (size_t i = 0; i < count && node != nullptr; ++i) node = Step(node, elements[i], create);
    return node;
}

bool Erase(ModelNode &from, const ModelNode *child) {
    for (size_t i = 0; i < from.children.size(); ++i) {
        if (&from.children[i] == child)
            return from.children.erase(from.children.begin() + static_cast<std::ptrdiff_t>(i)), true;
        if (Erase(from.children[i], child)) return true;
    }
    return false;
}

TEST(NodeTree, PathsAsTheModel) {
    std::mt19937 random(51);
    const char *const names[] = {"a", "B", "b", "c", "c(1)", "C(0)", "c(2)", "dot.name", "e:f", "g"};
    for (int tree = 0; tree < 300; ++tree) {
        const ComPtr<IZNode> node = Tree("<r/>");
        ModelNode model{T("r"), false, {}, {}};
        for (int step = 0; step < 60; ++step) {
            std::string path = OneOf(random, names);
            for (size_t k = random() % 3; k-- > 0;) path += std::string("::") + OneOf(random, names);
            if (random() % 40 == 0) path.insert(0, "::");
            if (random() % 40 == 0) path += "::";
            const std::vector<Text> e = Elements(T(path));
            const std::string value = std::to_string(random() % 1000);
            const bool wellFormed = Walk(&model, e, 0, false) != nullptr;
            switch (random() % 7) {
                case 0:
                case 1: {
                    ASSERT_EQ(node->AttributesSetString(B(path).get(), B(value).get()), wellFormed ? S_OK : E_INVALIDARG)
                        << path;
                    if (ModelNode *owner = wellFormed ? Walk(&model, e, e.size() - 1, true) : nullptr)
                        owner->Set(e.back(), T(value));
                    break;
                }
                case 2: {
                    ModelNode *owner = Walk(&model, e, e.size() - 1, false);
                    const Text *held = owner != nullptr ? owner->Attribute(e.back()) : nullptr;
                    Out out;
                    ASSERT_EQ(node->AttributesGetString(B(path).get(), out), held != nullptr ? S_OK : kNotFound) << path;
                    ASSERT_EQ(out.Said(), held != nullptr ? Say(TextView(*held)) : "<null>");
                    break;
                }
                case 3: {
                    ModelNode *owner = Walk(&model, e, e.size() - 1, false);
                    const Text *held = owner != nullptr ? owner->Attribute(e.back()) : nullptr;
                    ASSERT_EQ(node->AttributesRemove(B(path).get()), held != nullptr ? S_OK : kNotFound) << path;
                    if (held != nullptr)
                        std::erase_if(owner->attributes,
                                      [&](const auto &a) { return ModelKey(a.first) == ModelKey(e.back()); });
                    break;
                }
                case 4: {
                    const bool create = random() % 2 == 0;
                    ModelNode *found = Walk(&model, e, e.size(), create);
                    ComPtr<IZNode> child;
                    const HRESULT hr = node->NodeChildGet(B(path).get(), create, child.Put());
                    ASSERT_EQ(SUCCEEDED(hr), found != nullptr) << path;
                    if (found == nullptr) break;
                    ASSERT_EQ(Dump(child), conformance::Dump(*found));
                    const size_t most = found->children.size() + 2;
                    const auto position = static_cast<int32_t>(random() % most) - 1;
                    ComPtr<IZNode> added;
                    ASSERT_EQ(child->NodeChildAdd(B("c").get(), position, added.Put()), S_OK);
                    found->children.insert(position < 0 ? found->children.end() : found->children.begin() + position,
                                           {T("c"), false, {}, {}});
                    break;
                }
                case 5: {
                    const ModelNode *found = Walk(&model, e, e.size(), false);
                    ASSERT_EQ(node->NodeChildRemove(B(path).get()), found != nullptr ? S_OK : S_FALSE) << path;
                    if (found != nullptr) Erase(model, found);
                    break;
                }
                default: {
                    ModelNode *found = Walk(&model, e, e.size(), false);
                    if (found == nullptr) break;
                    ASSERT_EQ(At(node, path)->NodeValueSet(B(value).get()), S_OK);
                    found->TextSet(T(value));
                    const char *name = OneOf(random, names);
                    ASSERT_EQ(At(node, path)->NodeNameSet(B(std::string_view(name).substr(0, 1)).get()), S_OK);
                    found->name = T(std::string_view(name).substr(0, 1));
                }
            }
            ASSERT_EQ(Dump(node), conformance::Dump(model)) << path;
        }
    }
}

}    // namespace
}    // namespace conformance
