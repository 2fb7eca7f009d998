#include "tests/house/source_tree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

namespace house {
namespace {

namespace fs = std::filesystem;

// Walks a file's text once and gives two copies of the same shape: one without comments, one without literals as well.
class Stripper {
public:
    explicit Stripper(std::string_view text) : m_text(text) {}

    void Run() {
        while (m_at < m_text.size()) Step();
    }

    std::string lines;
    std::string code;

private:
    void Step() {
        if (Starts("//")) return SkipTo("\n");
        if (Starts("/*")) return SkipPast("*/");
        if (Starts("R\"")) return RawLiteral();
        const char c = m_text[m_at];
        if (c == '"' || (c == '\'' && !InNumber())) return Literal(c);
        Keep(1, true);
    }

    bool Starts(std::string_view with) const { return m_text.substr(m_at, with.size()) == with; }

    // A quotation mark between digits separates them.
    bool InNumber() const { return m_at > 0 && std::isxdigit(static_cast<unsigned char>(m_text[m_at - 1])) != 0; }

    void Keep(size_t count, bool isCode) {
        for (; count > 0 && m_at < m_text.size(); --count, ++m_at) {
            const char c = m_text[m_at];
            lines += c;
            if (isCode || c == '\n') code += c;
        }
    }

    void Drop(size_t end) {
        for (; m_at < std::min(end, m_text.size()); ++m_at) {
            if (m_text[m_at] != '\n') continue;
            lines += '\n';
            code += '\n';
        }
    }

    void SkipTo(std::string_view end) { Drop(m_text.find(end, m_at)); }

    void SkipPast(std::string_view end) {
        const size_t found = m_text.find(end, m_at + end.size());
        Drop(found == std::string_view::npos ? m_text.size() : found + end.size());
    }

    void Literal(char quote) {
        size_t end = m_at + 1;
        while (end < m_text.size() && m_text[end] != quote && m_text[end] != '\n') end += m_text[end] == '\\' ? 2 : 1;
        Keep(1, true);
        Keep(end - m_at, false);
        if (m_at < m_text.size() && m_text[m_at] == quote) Keep(1, true);
    }

    void RawLiteral() {
        const size_t open = m_text.find('(', m_at);
        if (open == std::string_view::npos) return Keep(2, true);
        const std::string close = ")" + std::string(m_text.substr(m_at + 2, open - m_at - 2)) + "\"";
        const size_t end = std::min(m_text.find(close, open), m_text.size() - close.size()) + close.size();
        Keep(2, true);
        Keep(end - m_at, false);
    }

    std::string_view m_text;
    size_t m_at = 0;
};

std::vector<std::string> Split(const std::string &text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n') {
            lines.emplace_back();
        } else if (c != '\r') {
            lines.back() += c;
        }
    }
    return lines;
}

bool IsSource(const fs::path &path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

// What a build, a checkout or an editor puts into the tree is not ours.
bool IsForeignFolder(const fs::path &path) {
    const std::string name = path.filename().string();
    return name.starts_with('.') || name == "build" || name == "out";
}

}    // namespace

SourceFile SourceFromText(std::string path, std::string_view text) {
    Stripper stripper(text);
    stripper.Run();
    return {std::move(path), Split(stripper.lines), Split(stripper.code)};
}

std::vector<SourceFile> ReadTree(const std::string &top) {
    std::vector<SourceFile> files;
    for (auto at = fs::recursive_directory_iterator(top); at != fs::recursive_directory_iterator(); ++at) {
        if (at->is_directory() && IsForeignFolder(at->path())) at.disable_recursion_pending();
        if (!at->is_regular_file() || !IsSource(at->path())) continue;
        std::ifstream stream(at->path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        files.push_back(SourceFromText(fs::relative(at->path(), top).generic_string(), text));
    }
    std::sort(files.begin(), files.end(), [](const SourceFile &a, const SourceFile &b) { return a.path < b.path; });
    return files;
}

std::vector<Include> IncludesOf(const SourceFile &file) {
    static const std::regex pattern(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    std::vector<Include> includes;
    for (size_t i = 0; i < file.lines.size(); ++i) {
        std::smatch match;
        if (std::regex_search(file.lines[i], match, pattern)) {
            includes.push_back({match[2], match[1] == "\"", static_cast<int>(i) + 1});
        }
    }
    return includes;
}

std::string Finding(const SourceFile &file, int line, const std::string &text) {
    return file.path + ":" + std::to_string(line) + ": " + text;
}

}    // namespace house
