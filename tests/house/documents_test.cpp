// The documents tell the truth about the tree, as far as a program can see it.
#include "tests/house/documents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/house/layers.h"
#include "zchromakey/properties.h"

namespace house {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

std::string ReadText(const fs::path &path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(stream), {}};
}

TEST(Documents, LinksAndNamedPathsExist) {
    const Layers layers = LayersFromText(ReadText(ZCK_SOURCE_DIR "/tools/layers.txt"));
    int seen = 0;
    for (const Document &document : ReadDocuments(ZCK_SOURCE_DIR)) {
        const fs::path folder = (fs::path(ZCK_SOURCE_DIR) / document.path).parent_path();
        for (const std::string &link : LocalLinks(document)) {
            EXPECT_TRUE(fs::exists(folder / link)) << document.path << ": " << link;
            ++seen;
        }
        for (const std::string &path : NamedPaths(document, ZCK_SOURCE_DIR)) {
            const bool planned = path.ends_with('/') && layers.contains(path.substr(0, path.size() - 1));
            EXPECT_TRUE(planned || fs::exists(fs::path(ZCK_SOURCE_DIR) / path)) << document.path << ": " << path;
            ++seen;
        }
    }
    EXPECT_GT(seen, 20);
}

TEST(Documents, CodeInTheReadmeIsCodeOfTheExample) {
    const Document readme{"README.md", ReadText(ZCK_SOURCE_DIR "/README.md")};
    const std::string example = ReadText(ZCK_SOURCE_DIR "/examples/host_minimal/host_minimal.cpp");
    const std::vector<std::string> blocks = CodeBlocks(readme, "cpp");
    EXPECT_GE(blocks.size(), 3u);
    for (const std::string &block : blocks) EXPECT_THAT(example, HasSubstr(block));
}

TEST(Documents, ThePropertiesAreThoseOfTheTable) {
    const std::string readme = ReadText(ZCK_SOURCE_DIR "/README.md");
    for (const ZPropertyInfo &p : kZProperties) {
        const std::string name = "`" + std::string(p.pszName) + "`";
        if (p.eKind == eZPK_Computed) {
            EXPECT_THAT(readme, HasSubstr(name));
            continue;
        }
        const std::string range = std::to_string(p.nMin) + " to " + std::to_string(p.nMax);
        const std::string kind = p.eKind == eZPK_Integer   ? range
                                 : p.eKind == eZPK_Boolean ? "boolean"
                                 : p.eKind == eZPK_Real    ? "number"
                                 : p.eKind == eZPK_Borders ? "left top right bottom"
                                                           : "text";
        const std::string byDefault = *p.pszDefault == '\0' ? " " : " " + std::string(p.pszDefault) + " ";
        EXPECT_THAT(readme, HasSubstr("| " + name + " | " + kind + " |" + byDefault + "|"));
    }
}

// The sources of the library.
std::vector<SourceFile> Rooms() {
    std::vector<SourceFile> rooms;
    for (SourceFile &file : ReadTree(ZCK_SOURCE_DIR)) {
        if (!file.path.starts_with("tests/") && !file.path.starts_with("hosts/") && !file.path.starts_with("include/"))
            rooms.push_back(std::move(file));
    }
    return rooms;
}

std::set<std::string> ListedAsAbsent() {
    const Document architecture{"docs/ARCHITECTURE.md", ReadText(ZCK_SOURCE_DIR "/docs/ARCHITECTURE.md")};
    return OperationsListed(architecture, "## What is not there yet");
}

TEST(Documents, WhatIsNotThereIsListed) {
    const std::set<std::string> listed = ListedAsAbsent();
    const std::set<std::string> absent = OperationsAbsent(Rooms());
    for (const std::string &name : listed) EXPECT_TRUE(absent.contains(name)) << name << " is listed, but it is there";
    for (const std::string &name : absent) EXPECT_TRUE(listed.contains(name)) << name << " is not there, nor listed";
}

// An operation that is listed, and one that answers what such an operation answers, tells of `E_NOTIMPL` in its header; one
// that is wholly absent does it with one fixed sentence.
TEST(Documents, HeadersSayWhatIsNotThere) {
    std::map<std::string, std::string> described;
    for (const SourceFile &file : ReadTree(ZCK_SOURCE_DIR)) {
        if (file.path.starts_with("include/") || (file.path.starts_with("frames/views/") && file.path.ends_with(".h")))
            described.merge(OperationsDescribed(ReadText(fs::path(ZCK_SOURCE_DIR) / file.path)));
    }
    EXPECT_GT(described.size(), 100u);
    std::set<std::string> absent;
    for (const auto &[name, comment] : described) {
        if (comment.find("Not implemented yet: `E_NOTIMPL`.") != std::string::npos) absent.insert(name);
    }
    std::set<std::string> expected = ListedAsAbsent();
    expected.merge(OperationsForwarding(Rooms(), absent));
    for (const auto &[name, comment] : described) {
        EXPECT_EQ(expected.contains(name), comment.find("`E_NOTIMPL`") != std::string::npos) << name << ":" << comment;
    }
}

TEST(Documents, TrapsAreHeldByTests) {
    const Document traps{"docs/TRAPS.md", ReadText(ZCK_SOURCE_DIR "/docs/TRAPS.md")};
    const std::set<std::string> defined = TestsDefined(ReadTree(ZCK_SOURCE_DIR));
    const std::vector<std::string> named = NamedTests(traps);
    EXPECT_GT(named.size(), 50u);
    for (const std::string &test : named) EXPECT_TRUE(defined.contains(test)) << test;
}

TEST(Documents, TheTableOfLocksIsComplete) {
    const Document architecture{"docs/ARCHITECTURE.md", ReadText(ZCK_SOURCE_DIR "/docs/ARCHITECTURE.md")};
    const std::set<std::string> declared = LocksDeclared(ReadTree(ZCK_SOURCE_DIR));
    EXPECT_GT(declared.size(), 10u);
    EXPECT_EQ(FirstColumn(architecture, "## Locks"), declared);
}

TEST(Documents, WhatIsLookedForIsFound) {
    const Document document{
        "a.md", "[x](docs/y.md) [w](https://z) [h](#here) `tests/no_such` `./tools/x` `a/b` `tests/a*`\n```cpp\nint x;\n```\n"};
    EXPECT_THAT(LocalLinks(document), ElementsAre("docs/y.md"));
    EXPECT_THAT(NamedPaths(document, ZCK_SOURCE_DIR), ElementsAre("tests/no_such", "tools/x"));
    EXPECT_THAT(CodeBlocks(document, "cpp"), ElementsAre("int x;\n"));

    EXPECT_THAT(NamedTests({"c.md", "`Suite.Name`, `a.cpp` and Suite.Other"}), ElementsAre("Suite, Name"));
    EXPECT_THAT(TestsDefined({SourceFromText("c.cpp", "TEST(A, B) {\nTEST_F(C, D) {}\n// TEST(E, F)\n")}),
                ElementsAre("A, B", "C, D"));

    const Document table{"b.md",
                         "# B\n## Absent\n\n| of | what |\n|---|---|\n| a | `One`, `Two` (x) | `C` |\n## Next\n| a | `D` |\n"};
    EXPECT_THAT(OperationsListed(table, "## Absent"), ElementsAre("One", "Two"));
    EXPECT_THAT(OperationsListed(table, "## Missing"), IsEmpty());
    EXPECT_THAT(FirstColumn({"b.md", "# B\n## Locks\n\n| lock | of |\n|---|---|\n| `m_a` | `B` |\n"}, "## Locks"),
                ElementsAre("m_a"));
    EXPECT_THAT(LocksDeclared({SourceFromText("xml/a.h", "    mutable FrameRWLock m_a{1024};\n    CriticalSection b;\n"),
                               SourceFromText("platform/sync.h", "CriticalSection m_section;"),
                               SourceFromText("tests/a.h", "std::mutex m_other;")}),
                ElementsAre("b", "m_a"));
    EXPECT_THAT(OperationsAbsent({SourceFromText("a.cpp",
                                                 "HRESULT A::One(int) { return E_NOTIMPL; }\n"
                                                 "HRESULT A::Two(int) {\n    return Absent(x);\n}\n"
                                                 "HRESULT A::Three() { return S_OK; }    // no E_NOTIMPL\n")}),
                ElementsAre("One", "Two"));
    EXPECT_THAT(OperationsForwarding({SourceFromText("a.cpp",
                                                     "HRESULT A::One(int) { return Two(1); }\n"
                                                     "HRESULT A::Three() {\n    hr = p->Two(2);\n    Four();\n}\n")},
                                     {"Two", "Four"}),
                ElementsAre("One", "Three"));
    EXPECT_THAT(OperationsDescribed("    /// Works\n    /// well.\n    virtual HRESULT Z_STDCALL One(int) = 0;\n"
                                    "    virtual HRESULT Z_STDCALL Two() = 0;\n"),
                ElementsAre(std::pair<const std::string, std::string>("One", " Works well."),
                            std::pair<const std::string, std::string>("Two", "")));
}

}    // namespace
}    // namespace house
