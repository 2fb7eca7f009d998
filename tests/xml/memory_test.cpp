// Memory of attribute reads, and what happens when there is none.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "tests/xml/say.h"
#include "xml/attribute_list.h"
#include "xml/node.h"

namespace {

thread_local int64_t t_taken = 0;
thread_local int64_t t_given = 0;
/// So many more are given; below 0 all.
thread_local int64_t t_left = -1;

void *Take(size_t size) {
    ++t_taken;
    if (t_left == 0) throw std::bad_alloc();
    if (t_left > 0) --t_left;
    if (void *block = std::malloc(size != 0 ? size : 1)) return block;
    throw std::bad_alloc();
}

void Give(void *block) noexcept {
    t_given += block != nullptr ? 1 : 0;
    std::free(block);
}

}    // namespace

void *operator new(size_t size) { return Take(size); }
void *operator new[](size_t size) { return Take(size); }
void operator delete(void *block) noexcept { Give(block); }
void operator delete[](void *block) noexcept { Give(block); }
void operator delete(void *block, size_t) noexcept { Give(block); }
void operator delete[](void *block, size_t) noexcept { Give(block); }

namespace zck::XMLParse {
namespace {

TEST(Memory, ATypedReadTakesNone) {
    const XMLNodePtr node = Tree("<a i='12' f='0.5' b='true'><c i='3'/></a>");
    for (int32_t i = 0; i < 100; ++i) node->IntSet(Text(In("n")).append(TextFromInt(i)), i);
    const Text names[] = {In("i"), In("n77"), In("c::i"), In("c(0)::i"), In("missing"), In("c::missing"), In("d::i")};
    for (const Text &name : names) node->IntGet(name);
    const int64_t before = t_taken;
    int32_t sum = 0;
    for (const Text &name : names) sum += node->IntGet(name);
    node->AttributeExists(names[0]);
    ValueData data;
    EXPECT_TRUE(node->AttributeReadOwn(NameKey(names[1]), ValueType::Integer, data));
    EXPECT_EQ(t_taken, before);
    EXPECT_EQ(sum, 12 + 77 + 3 + 3);
}

TEST(Memory, TheFirstTypedReadOfATextTakesNone) {
    const XMLNodePtr node = Tree("<a i='12'/>");
    const Text name = In("i");
    const int64_t before = t_taken;
    EXPECT_EQ(node->IntGet(name), 12);
    EXPECT_EQ(t_taken, before);
}

TEST(Memory, NamesThatComeAndGoLeaveNone) {
    const XMLNodePtr node = CoXMLNode::Create(In("a"));
    // So many are found through the index.
    for (int32_t i = 0; i < 40; ++i) node->IntSet(Text(In("stays")).append(TextFromInt(i)), i);
    const XMLNodePtr child = node->ChildAdd(In("c"));
    for (int32_t i = 0; i < 40; ++i) node->ChildAdd(In("b"));
    const auto round = [&](int32_t i) {
        const Text name = Text(In("n")).append(TextFromInt(i));
        node->IntSet(name, i);
        EXPECT_TRUE(node->AttributeRemove(name));
        child->NameSet(name);
        node->NodeFindOrCreate(Text(name).append(In("x")));
        EXPECT_TRUE(node->NodeRemove(Text(name).append(In("x"))));
    };
    round(-1);
    const int64_t held = t_taken - t_given;
    for (int32_t i = 0; i < 1000; ++i) round(i);
    EXPECT_EQ(t_taken - t_given, held);
}

/// Runs a call with 0, 1, 2... blocks of memory until it is content; it has to answer `E_OUTOFMEMORY` before.
template <class Call>
void ExpectOutOfMemoryUntilEnough(Call call) {
    for (int64_t blocks = 0;; ++blocks) {
        ASSERT_LT(blocks, 10000);
        t_left = blocks;
        const HRESULT hr = call();
        t_left = -1;
        if (hr == S_OK) {
            EXPECT_GT(blocks, 0);
            return;
        }
        ASSERT_EQ(hr, E_OUTOFMEMORY) << blocks;
    }
}

TEST(Memory, ParsingAnswersOutOfMemory) {
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    const Text xml =
        In("<?x?><aRatherLongNameOfAnElement x='1' b='a value that is not short'>text that is not short"
           "<b/><c><d>e</d></c><!-- -->and some more text</a>");
    ExpectOutOfMemoryUntilEnough([&] { return ParseXML(*node, xml); });
    EXPECT_EQ(node->ChildCount(Children::Elements), 2U);
}

TEST(Memory, ATreeStaysWholeWhenThereIsNone) {
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    for (int i = 0; i < 40; ++i) {
        const Bstr name(Text(In("a_name_longer_than_seven")).append(TextFromInt(i)));
        const Bstr path(Text(In("child_of_that_name")).append(TextFromInt(i)).append(In("::attribute_x")));
        ExpectOutOfMemoryUntilEnough([&] { return node->AttributesSetString(name.get(), name.get()); });
        ExpectOutOfMemoryUntilEnough([&] { return node->AttributesSetInt(path.get(), i); });
    }
    EXPECT_EQ(node->AttributeCount(), 40U);
    for (int i = 0; i < 40; ++i) {
        Text value;
        EXPECT_TRUE(node->AttributeText(Text(In("A_name_longer_than_seven")).append(TextFromInt(i)), value));
        EXPECT_EQ(node->IntGet(Text(In("child_of_that_name")).append(TextFromInt(i)).append(In("::attribute_x"))), i);
        EXPECT_EQ(node->ChildCount(Children::All), 40U);
    }
}

TEST(Memory, InterfacesAnswerOutOfMemory) {
    const XMLNodePtr node =
        Tree("<aRatherLongName first_attribute='1' second_attribute='2'>text that is not short<b/><c/></a>");
    const Bstr xml = Arg("<another_long_name x='1'/>");
    const Bstr name = Arg("a_name_longer_than_seven");
    ExpectOutOfMemoryUntilEnough([&] {
        Bstr text;
        return node->NodeSaveXML(text.Put());
    });
    ExpectOutOfMemoryUntilEnough([&] {
        ComPtr<IZNode> clone;
        return node->NodeClone(clone.Put());
    });
    ExpectOutOfMemoryUntilEnough([&] {
        ComPtr<IZAttributes> clone;
        return node->AttributesClone(clone.Put());
    });
    ExpectOutOfMemoryUntilEnough([&] {
        Bstr text;
        return node->AttributesGetList(text.Put());
    });
    ExpectOutOfMemoryUntilEnough([&] {
        Bstr text;
        return node->NodeValueGet(text.Put());
    });
    ExpectOutOfMemoryUntilEnough([&] { return node->NodeValueSet(xml.get()); });
    ExpectOutOfMemoryUntilEnough([&] { return node->NodeNameSet(name.get()); });
    ExpectOutOfMemoryUntilEnough([&] {
        ComPtr<IZNode> child;
        return node->NodeChildGet(name.get(), 1, child.Put());
    });
    ExpectOutOfMemoryUntilEnough([&] {
        int32_t count = 0;
        return node->AttributesGetCount(&count);
    });
}

}    // namespace
}    // namespace zck::XMLParse
