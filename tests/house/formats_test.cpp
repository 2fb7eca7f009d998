// The public enumeration of pixel formats and the table of their facts are one list.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "frames/media/format_table.h"

namespace house {
namespace {

TEST(Formats, EveryPublicCodeHasARowInTheFormatTable) {
    std::ifstream stream(ZCK_SOURCE_DIR "/include/zchromakey/media_types.h", std::ios::binary);
    const std::string header{std::istreambuf_iterator<char>(stream), {}};
    const std::regex enumerator("\\b(eZFCC_\\w+) = (0x[0-9A-Fa-f]+|0)\\b");
    int seen = 0;
    for (std::sregex_iterator it(header.begin(), header.end(), enumerator); it != std::sregex_iterator(); ++it) {
        const auto code = static_cast<eZFCC>(std::stoul((*it)[2].str(), nullptr, 0));
        EXPECT_EQ(zck::FormatFind(code) != nullptr, code != eZFCC_Default) << (*it)[1].str();
        ++seen;
    }
    EXPECT_GE(seen, 16);
}

}    // namespace
}    // namespace house
