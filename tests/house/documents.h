// What the documents claim about the tree.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/house/source_tree.h"

namespace house {

struct Document {
    std::string path;    // from the top of the tree, with '/'
    std::string text;
};

/// The Markdown files of the tree.
std::vector<Document> ReadDocuments(const std::string &top);

/// The fenced blocks of one language, without the fences.
std::vector<std::string> CodeBlocks(const Document &document, const std::string &language);

/// Targets of links that are neither on the web nor within the document.
std::vector<std::string> LocalLinks(const Document &document);

/// Paths of the tree named in code spans, such as `tools/format` or `keying/kernels/`: those that begin with a folder or file
/// of the top.
std::vector<std::string> NamedPaths(const Document &document, const std::string &top);

/// Tests named in code spans as `Suite.Name`, as "Suite, Name".
std::vector<std::string> NamedTests(const Document &document);

/// Tests defined in the files, as "Suite, Name".
std::set<std::string> TestsDefined(const std::vector<SourceFile> &files);

/// Code spans of the first column of the table below a heading.
std::set<std::string> FirstColumn(const Document &document, const std::string &heading);

/// Operations in code spans of the second column of the table below a heading.
std::set<std::string> OperationsListed(const Document &document, const std::string &heading);

/// Locks that the rooms declare, by name.
std::set<std::string> LocksDeclared(const std::vector<SourceFile> &files);

/// Member functions in whose definition E_NOTIMPL is answered.
std::set<std::string> OperationsAbsent(const std::vector<SourceFile> &files);

/// Member functions whose answer is that of one of `operations`.
std::set<std::string> OperationsForwarding(const std::vector<SourceFile> &files, const std::set<std::string> &operations);

/// The operations that a header's interfaces declare, each with the comment in front of it.
std::map<std::string, std::string> OperationsDescribed(const std::string &header);

}    // namespace house
