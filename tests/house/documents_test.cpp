// The documents tell the truth about the tree, as far as a program can see it.
#include "tests/house/documents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace house {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace fs = std::filesystem;

std::string ReadText(const fs::path &path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string{std::istreambuf_iterator<char>(stream), {}};
}

TEST(Documents, LinksAndNamedPathsExist) {
    int seen = 0;
    for (const Document &document : ReadDocuments(ZCK_SOURCE_DIR)) {
        const fs::path folder = (fs::path(ZCK_SOURCE_DIR) / document.path).parent_path();
        for (const std::string &link : LocalLinks(document)) {
            EXPECT_TRUE(fs::exists(folder / link)) << document.path << ": " << link;
            ++seen;
        }
        for (const std::string &path : NamedPaths(document, ZCK_SOURCE_DIR)) {
            EXPECT_TRUE(fs::exists(fs::path(ZCK_SOURCE_DIR) / path)) << document.path << ": " << path;
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

TEST(Documents, WhatIsLookedForIsFound) {
    const Document document{
        "a.md", "[x](docs/y.md) [w](https://z) [h](#here) `tests/no_such` `./tools/x` `a/b` `tests/a*`\n```cpp\nint x;\n```\n"};
    EXPECT_THAT(LocalLinks(document), ElementsAre("docs/y.md"));
    EXPECT_THAT(NamedPaths(document, ZCK_SOURCE_DIR), ElementsAre("tests/no_such", "tools/x"));
    EXPECT_THAT(CodeBlocks(document, "cpp"), ElementsAre("int x;\n"));
}

}    // namespace
}    // namespace house
