// Writes, reads and removals of settings by path, against a model.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "tests/conformance/props_object.h"

namespace conformance {
namespace {

class ModelStore {
public:
    ModelNode root{T("z-props"), false, {}, {}};

    static std::vector<Text> Elements(const Text &path) {
        std::vector<Text> parts;
        size_t from = 0, at = 0;
        while ((at = path.find(T("::"), from)) != Text::npos) {
            parts.push_back(path.substr(from, at - from));
            from = at + 2;
        }
        parts.push_back(path.substr(from));
        return parts;
    }
    ModelNode *Find(const std::vector<Text> &elements, size_t count, bool create = false) {
        ModelNode *node = &root;
        for (size_t i = 0; i < count && node != nullptr; ++i) {
            const size_t bracket = elements[i].find(OLECHAR{'('});
            const Text name = elements[i].substr(0, bracket);
            ModelNode *child = node->Child(name, bracket == Text::npos ? 0 : elements[i][bracket + 1] - '0');
            if (child == nullptr && create) child = &node->children.emplace_back(ModelNode{name, false, {}, {}});
            node = child;
        }
        return node;
    }
    HRESULT Set(const Text &path, const Text &value) {
        const std::vector<Text> e = Elements(path);
        for (const Text &element : e)
            if (element.empty()) return E_INVALIDARG;
        if (ModelNode *node = Find(e, e.size())) {
            node->TextSet(value);
        } else {
            Find(e, e.size() - 1, true)->Set(e.back(), value);
        }
        if (e.size() < 2) return S_OK;
        // A child that was made for an index is not found by that index yet; then nothing is moved.
        ModelNode *above = Find(e, e.size() - 2);
        if (above == nullptr || Find(e, e.size() - 1) == nullptr) return S_OK;
        if (const Text *held = above->Attribute(e[e.size() - 2])) {
            const Text moved = *held;
            Drop(*above, e[e.size() - 2]);
            Find(e, e.size() - 1)->TextSet(moved);
        }
        return S_OK;
    }
    std::string Get(const Text &path) {
        const std::vector<Text> e = Elements(path);
        for (const Text &element : e)
            if (element.empty()) return None();
        ModelNode *owner = Find(e, e.size() - 1);
        if (const Text *held = owner != nullptr ? owner->Attribute(e.back()) : nullptr) return Good(Say(TextView(*held)));
        ModelNode *node = Find(e, e.size());
        if (node == nullptr) return None();
        const Text *text = node->TextChild();
        if (text != nullptr && !text->empty()) return Good(Say(TextView(*text)));
        std::string list;
        for (const auto &[name, value] : node->attributes)
            list += (list.empty() ? "" : " ") + Say(TextView(name)) + "=" + Say(ModelQuote(value));
        return Good(list);
    }
    HRESULT Remove(const Text &path) {
        const std::vector<Text> e = Elements(path);
        for (const Text &element : e)
            if (element.empty()) return E_INVALIDARG;
        ModelNode *owner = Find(e, e.size() - 1);
        if (owner != nullptr && owner->Attribute(e.back()) != nullptr) return Drop(*owner, e.back()), S_OK;
        const ModelNode *node = Find(e, e.size());
        if (node == nullptr) return E_INVALIDARG;
        for (size_t i = 0; i < owner->children.size(); ++i)
            if (&owner->children[i] == node)
                return owner->children.erase(owner->children.begin() + static_cast<std::ptrdiff_t>(i)), S_OK;
        return E_UNEXPECTED;
    }
    static void Drop(ModelNode &node, const Text &name) {
        std::erase_if(node.attributes, [&](const auto &a) { return ModelKey(a.first) == ModelKey(name); });
    }
};

TEST(Props, AsTheModel) {
    std::mt19937 random(62);
    const char *const names[] = {"a", "A", "b", "c", "c(1)", "c(0)", "d.e", "f"};
    const char *const values[] = {"1", "", "x y", "it's", "<v>", "a=1", "\"'"};
    for (int tree = 0; tree < 400; ++tree) {
        PropsObject o;
        ModelStore model;
        for (int step = 0; step < 60; ++step) {
            std::string path = OneOf(random, names);
            for (size_t k = random() % 3; k-- > 0;) path += std::string("::") + OneOf(random, names);
            if (random() % 50 == 0) path += "::";
            switch (random() % 5) {
                case 0:
                case 1: {
                    const char *value = OneOf(random, values);
                    ASSERT_EQ(o.Set(path, value), model.Set(T(path), T(value))) << path;
                    break;
                }
                case 2:
                    if (random() % 2 == 0) break;
                    ASSERT_EQ(o->PropsRemove(B(path).get()), model.Remove(T(path))) << path;
                    break;
                default:
                    ASSERT_EQ(o.Get(path), model.Get(T(path))) << path << " in " << o.Tree();
            }
            ASSERT_EQ(o.Tree(), Dump(model.root)) << path;
        }
        // The same tree, walked by index.
        const auto walk = [&](auto &self, const std::string &path, const ModelNode &node) -> void {
            int32_t count = -1, index = 0;
            ASSERT_EQ(o->PropsGetCount(B(path).get(), &count), S_OK);
            for (const auto &[name, value] : node.attributes)
                ASSERT_EQ(ItemAt(o, path, index++), (Item{S_OK, Say(TextView(name)), Say(TextView(value)), 0}));
            std::map<uint64_t, int> seen;
            for (const ModelNode &child : node.children) {
                if (child.isText) continue;
                ModelNode copy = child;
                const Text *text = copy.TextChild();
                ASSERT_EQ(ItemAt(o, path, index++),
                          (Item{S_OK, Say(TextView(child.name)), text != nullptr ? Say(TextView(*text)) : "", 1}));
                self(self,
                     (path.empty() ? "" : path + "::") + Say(TextView(child.name)) + "(" +
                         std::to_string(seen[ModelKey(child.name)]++) + ")",
                     child);
            }
            ASSERT_EQ(count, index);
            ASSERT_EQ(ItemAt(o, path, index).status, kBadIndex);
        };
        walk(walk, "", model.root);
    }
}

}    // namespace
}    // namespace conformance
