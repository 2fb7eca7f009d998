#include "tests/house/habits.h"

#include <algorithm>
#include <regex>

namespace house {
namespace {

bool IsBelow(const SourceFile &file, std::string_view folder) { return file.path.starts_with(folder); }

std::vector<std::string> LinesThatMatch(const SourceFile &file, const std::regex &pattern, const std::string &say) {
    std::vector<std::string> findings;
    for (size_t i = 0; i < file.code.size(); ++i) {
        std::smatch match;
        if (std::regex_search(file.code[i], match, pattern)) {
            findings.push_back(Finding(file, static_cast<int>(i) + 1, say + " " + match[1].str()));
        }
    }
    return findings;
}

void Append(std::vector<std::string> &all, std::vector<std::string> more) {
    for (std::string &finding : more) all.push_back(std::move(finding));
}

std::string Folder(const std::string &path) { return path.substr(0, path.rfind('/') + 1); }

}    // namespace

std::vector<std::string> SystemConditionals(const SourceFile &file) {
    static const std::regex pattern(
        R"(^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|WIN32|__linux__|__unix__|__APPLE__|_MSC_VER|__MINGW\w*)\b)");
    if (IsBelow(file, "platform/") || file.path == "include/zchromakey/com.h") return {};
    return LinesThatMatch(file, pattern, "conditional on");
}

std::vector<std::string> UnevenWords(const SourceFile &file) {
    static const std::regex words(
        R"(\b(_?wcs\w+|wmem\w+|_?tow(?:lower|upper)|isw\w+|v?f?w(?:printf|scanf)|_?v?sn?w(?:printf|scanf)|setlocale|codecvt\w*|)"
        R"(wstring_convert|std::locale)\b)");
    static const std::regex longs(R"(\b(long)\b(?!\s+double))");
    static const std::regex longLong(R"(\blong\s+long\b)");
    std::vector<std::string> findings = LinesThatMatch(file, words, "uses");
    // The back-ends meet the system's own functions, which take such types.
    if (IsBelow(file, "platform/")) return findings;
    // 64 bits wide on every system, and what `printf` asks for.
    SourceFile without = file;
    for (std::string &line : without.code) line = std::regex_replace(line, longLong, "");
    Append(findings, LinesThatMatch(without, longs, "uses"));
    return findings;
}

std::vector<std::string> FileFindings(const SourceFile &file) {
    static const std::regex lowerSnake("[a-z0-9]+(_[a-z0-9]+)*\\.(h|cpp)");
    std::vector<std::string> findings;
    if (!std::regex_match(file.path.substr(file.path.rfind('/') + 1), lowerSnake)) {
        findings.push_back(file.path + ": name is not lower_snake");
    }
    const bool guarded = std::find(file.lines.begin(), file.lines.end(), "#pragma once") != file.lines.end();
    if (file.path.ends_with(".h") && !guarded) findings.push_back(file.path + ": no #pragma once");
    return findings;
}

std::vector<std::string> VectorFileIncludes(const SourceFile &file) {
    if (!file.path.ends_with("_avx2.cpp") && !file.path.ends_with("_avx512.cpp")) return {};
    std::vector<std::string> findings;
    for (const Include &include : IncludesOf(file)) {
        const bool plain = include.name == "immintrin.h" || include.name == "platform/avx2.h" || include.name == "cstdint" ||
                           include.name == "cstddef";
        if (plain || (include.quoted && Folder(include.name) == Folder(file.path))) continue;
        findings.push_back(Finding(file, include.line, "vector file includes " + include.name));
    }
    return findings;
}

}    // namespace house
