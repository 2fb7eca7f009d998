// House rules that are checked line by line, and the proof that each check finds what it looks for.
#include "tests/house/habits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace house {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::string> InTree(std::vector<std::string> (*rule)(const SourceFile &)) {
    static const std::vector<SourceFile> files = ReadTree(ZCK_SOURCE_DIR);
    std::vector<std::string> all;
    for (const SourceFile &file : files) {
        for (std::string &finding : rule(file)) all.push_back(std::move(finding));
    }
    return all;
}

TEST(Habits, TheSystemIsAskedForOnlyInThePlatformRoom) {
    EXPECT_THAT(InTree(SystemConditionals), IsEmpty());

    EXPECT_THAT(SystemConditionals(SourceFromText("a/b.cpp", "\n#ifdef _WIN32\n#endif\n")),
                ElementsAre("a/b.cpp:2: conditional on _WIN32"));
    EXPECT_THAT(SystemConditionals(SourceFromText("a/b.cpp", " # if !defined( __linux__)")), SizeIs(1));
    EXPECT_THAT(SystemConditionals(SourceFromText("a/b.cpp", "#if defined(X) || defined(__MINGW64__)")), SizeIs(1));
    EXPECT_THAT(SystemConditionals(SourceFromText("a/b.cpp", "// #ifdef _WIN32\n#ifdef NDEBUG\n#include <x_WIN32.h>")),
                IsEmpty());
    EXPECT_THAT(SystemConditionals(SourceFromText("platform/b.cpp", "#ifdef _WIN32")), IsEmpty());
}

TEST(Habits, NoWideCharacterFunctionsNoLocaleNoLong) {
    EXPECT_THAT(InTree(UnevenWords), IsEmpty());

    for (const char *line : {"n = wcslen(p);", "_wcsicmp(a, b)", "towlower(c)", "swprintf(b, n, f)", "_snwprintf(b)",
                             "std::locale x;", "setlocale(0, 0)", "long n = 0;", "unsigned long n", "long long a; long b;"}) {
        EXPECT_THAT(UnevenWords(SourceFromText("a/b.cpp", line)), SizeIs(1)) << line;
    }
    for (const char *line : {"/* wcslen\n wcslen */ x", "\"a long text\"", "int longest, along;", "x = (unsigned long  long)y",
                             "long double x;", "'\"'; // long", "1'000'000 + 'c'", "R\"x(long)\" )x\""}) {
        EXPECT_THAT(UnevenWords(SourceFromText("a/b.cpp", line)), IsEmpty()) << line;
    }
    EXPECT_THAT(UnevenWords(SourceFromText("platform/posix/b.cpp", "long pages; wcslen(x)")), SizeIs(1));
}

TEST(Habits, FileNamesAreLowerSnakeAndHeadersAreGuarded) {
    EXPECT_THAT(InTree(FileFindings), IsEmpty());

    EXPECT_THAT(FileFindings(SourceFromText("a/BlobHolder.cpp", "")), SizeIs(1));
    EXPECT_THAT(FileFindings(SourceFromText("a/blob-holder.cpp", "")), SizeIs(1));
    EXPECT_THAT(FileFindings(SourceFromText("a/blob_.cpp", "")), SizeIs(1));
    EXPECT_THAT(FileFindings(SourceFromText("a/blob.h", "// #pragma once\n")), ElementsAre("a/blob.h: no #pragma once"));
    EXPECT_THAT(FileFindings(SourceFromText("a/blob_holder_2.h", "#pragma once\n")), IsEmpty());
}

TEST(Habits, VectorFilesIncludeTheirOwnHeaderAndIntrinsicsOnly) {
    EXPECT_THAT(InTree(VectorFileIncludes), IsEmpty());

    EXPECT_THAT(
        VectorFileIncludes(SourceFromText("a/k_avx2.cpp", "#include \"a/k.h\"\n#include <immintrin.h>\n#include <vector>")),
        ElementsAre("a/k_avx2.cpp:3: vector file includes vector"));
    EXPECT_THAT(VectorFileIncludes(SourceFromText("a/k_avx2.cpp", "#include \"b/k.h\"")), SizeIs(1));
    EXPECT_THAT(VectorFileIncludes(SourceFromText("a/k_ref.cpp", "#include <vector>")), IsEmpty());
}

}    // namespace
}    // namespace house
