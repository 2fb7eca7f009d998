// What the documents claim about the tree.
#pragma once

#include <string>
#include <vector>

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

}    // namespace house
