#include "tests/house/documents.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

namespace house {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> AllMatches(const std::string &text, const std::regex &pattern) {
    std::vector<std::string> found;
    for (auto at = std::sregex_iterator(text.begin(), text.end(), pattern); at != std::sregex_iterator(); ++at) {
        found.push_back((*at)[1]);
    }
    return found;
}

}    // namespace

std::vector<Document> ReadDocuments(const std::string &top) {
    std::vector<Document> documents;
    for (const char *folder : {".", "docs"}) {
        for (const fs::directory_entry &entry : fs::directory_iterator(fs::path(top) / folder)) {
            if (entry.path().extension() != ".md") continue;
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::string path = fs::relative(entry.path(), top).generic_string();
            documents.push_back({path, std::string{std::istreambuf_iterator<char>(stream), {}}});
        }
    }
    return documents;
}

std::vector<std::string> CodeBlocks(const Document &document, const std::string &language) {
    const std::string open = "```" + language + "\n";
    std::vector<std::string> blocks;
    for (size_t at = document.text.find(open); at != std::string::npos; at = document.text.find(open, at)) {
        at += open.size();
        const size_t end = document.text.find("```", at);
        blocks.push_back(document.text.substr(at, end - at));
    }
    return blocks;
}

std::vector<std::string> LocalLinks(const Document &document) {
    std::vector<std::string> links;
    for (std::string &target : AllMatches(document.text, std::regex(R"(\]\(([^)\s]+)\))"))) {
        if (target.find("://") == std::string::npos && !target.starts_with('#')) links.push_back(std::move(target));
    }
    return links;
}

std::vector<std::string> NamedPaths(const Document &document, const std::string &top) {
    std::vector<std::string> paths;
    for (std::string &path : AllMatches(document.text, std::regex(R"(`(?:\./)?([A-Za-z0-9_./-]+/[A-Za-z0-9_./-]*)`)"))) {
        const std::string first = path.substr(0, path.find('/'));
        if (first != "build" && first != "out" && fs::exists(fs::path(top) / first)) paths.push_back(std::move(path));
    }
    return paths;
}

std::vector<std::string> NamedTests(const Document &document) {
    std::vector<std::string> tests = AllMatches(document.text, std::regex(R"(`([A-Z][A-Za-z0-9]*\.[A-Za-z]\w*)`)"));
    for (std::string &test : tests) test.replace(test.find('.'), 1, ", ");
    return tests;
}

std::set<std::string> TestsDefined(const std::vector<SourceFile> &files) {
    std::set<std::string> tests;
    for (const SourceFile &file : files) {
        for (const std::string &line : file.code) {
            for (std::string &test : AllMatches(line, std::regex(R"(^TEST(?:_F|_P)?\((\w+, \w+)\))")))
                tests.insert(std::move(test));
        }
    }
    return tests;
}

namespace {

// Code spans in a column, counted from 0, of the table below a heading.
std::set<std::string> ColumnListed(const Document &document, const std::string &heading, int column) {
    std::set<std::string> names;
    const size_t start = document.text.find("\n" + heading + "\n");
    if (start == std::string::npos) return names;
    const std::string section = document.text.substr(start, document.text.find("\n## ", start + heading.size()) - start);
    std::string row = R"(\n\|)";
    for (int i = 0; i < column; ++i) row += R"([^|\n]*\|)";
    for (const std::string &cell : AllMatches(section, std::regex(row + R"(([^|\n]*)\|)"))) {
        for (std::string &name : AllMatches(cell, std::regex(R"(`(\w+)`)"))) names.insert(std::move(name));
    }
    return names;
}

}    // namespace

std::set<std::string> FirstColumn(const Document &document, const std::string &heading) {
    return ColumnListed(document, heading, 0);
}

std::set<std::string> OperationsListed(const Document &document, const std::string &heading) {
    return ColumnListed(document, heading, 1);
}

std::set<std::string> LocksDeclared(const std::vector<SourceFile> &files) {
    static const std::regex rooms(
        "^(?!platform/.*(?:sync|frame_rw_lock)\\.)(?:platform|frames|props|xml|imaging|keying|keyobject|module)/");
    std::set<std::string> locks;
    for (const SourceFile &file : files) {
        if (!std::regex_search(file.path, rooms)) continue;
        for (const std::string &line : file.code) {
            static const std::regex lock(R"(\b(?:CriticalSection|FrameRWLock|std::mutex|std::shared_mutex) (\w+)[;{])");
            for (std::string &name : AllMatches(line, lock)) locks.insert(std::move(name));
        }
    }
    return locks;
}

namespace {

// Shows each line of a member function's definition, the name with it.
template <class Visit>
void ForEachDefinitionLine(const std::vector<SourceFile> &files, Visit visit) {
    static const std::regex definition(R"(^\S.*\b\w+::([A-Z]\w+)\()");
    for (const SourceFile &file : files) {
        std::string current;
        for (const std::string &line : file.code) {
            std::smatch match;
            if (std::regex_search(line, match, definition)) current = match[1];
            if (!current.empty()) visit(current, line);
        }
    }
}

}    // namespace

std::set<std::string> OperationsAbsent(const std::vector<SourceFile> &files) {
    static const std::regex answer(R"(\bE_NOTIMPL\b|\bAbsent\()");
    std::set<std::string> operations;
    ForEachDefinitionLine(files, [&](const std::string &name, const std::string &line) {
        if (std::regex_search(line, answer)) operations.insert(name);
    });
    return operations;
}

std::set<std::string> OperationsForwarding(const std::vector<SourceFile> &files, const std::set<std::string> &operations) {
    static const std::regex call(R"((?:return |hr = )(?:\w+->)?([A-Z]\w+)\()");
    std::set<std::string> found;
    ForEachDefinitionLine(files, [&](const std::string &name, const std::string &line) {
        std::smatch match;
        if (std::regex_search(line, match, call) && operations.contains(match[1])) found.insert(name);
    });
    return found;
}

std::map<std::string, std::string> OperationsDescribed(const std::string &header) {
    static const std::regex declaration(R"(^    virtual HRESULT Z_STDCALL (\w+)\()");
    std::map<std::string, std::string> operations;
    std::istringstream lines(header);
    std::string comment;
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (line.starts_with("    ///")) {
            comment += line.substr(7);
            continue;
        }
        if (std::regex_search(line, match, declaration)) operations[match[1]] = comment;
        comment.clear();
    }
    return operations;
}

}    // namespace house
