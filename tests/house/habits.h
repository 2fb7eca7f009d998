// House rules that a line or a file name can be held against.
#pragma once

#include <string>
#include <vector>

#include "tests/house/source_tree.h"

namespace house {

/// Conditionals on the system or the compiler, where no back-end stands.
std::vector<std::string> SystemConditionals(const SourceFile &file);

/// Wide-character and locale functions, and types whose width differs between the systems.
std::vector<std::string> UnevenWords(const SourceFile &file);

/// A file name that is not lower_snake; a header without `#pragma once`.
std::vector<std::string> FileFindings(const SourceFile &file);

/// In a file for one processor level: headers whose inline code would be compiled for that level.
std::vector<std::string> VectorFileIncludes(const SourceFile &file);

}    // namespace house
