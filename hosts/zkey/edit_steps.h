// The steps of `zkey edit` in words.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "zchromakey/key_types.h"

namespace zkey {

enum class EditOp { Detect, Add, Exclude, Rect, Set, Back, Forward, Reset, Preview, Matte, Save, Key };

struct EditStep {
    EditOp op;
    std::string name;                  ///< the word of the step
    std::array<int32_t, 4> place{};    ///< x, y, or left, top, right, bottom
    eCK_Adjust adjust = eCKA_KeyType;
    double value = 0;
    std::string options;    ///< name=value pairs for the library
    std::string file;
};

/// The words of one line: blanks separate, '"' and "'" hold together, "#" begins a comment.
std::vector<std::string> WordsOf(const std::string &line);

/// All steps that the words make. Ends the program with a usage line when they make none.
std::vector<EditStep> ParseSteps(const std::vector<std::string> &words);

/// A list of name=value pairs for the library, with the value quoted.
std::string OptionPair(const std::string &name, const std::string &value);

/// One line for each step, for the help.
std::string StepsHelp();

}    // namespace zkey
