// The project's source files as the house tests read them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace house {

struct SourceFile {
    std::string path;                  // from the top of the tree, with '/'
    std::vector<std::string> lines;    // without comments
    std::vector<std::string> code;     // without comments, and string and character literals are empty
};

struct Include {
    std::string name;
    bool quoted;
    int line;
};

/// A file from its text, as `ReadTree` makes them.
SourceFile SourceFromText(std::string path, std::string_view text);

/// All .h and .cpp files below `top`, except those of builds and hidden folders, by path.
std::vector<SourceFile> ReadTree(const std::string &top);

std::vector<Include> IncludesOf(const SourceFile &file);

/// "path:line: text", lines counted from 1.
std::string Finding(const SourceFile &file, int line, const std::string &text);

}    // namespace house
