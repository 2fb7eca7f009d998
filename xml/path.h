// Paths of nodes and attributes: `a::b(2)::c`.
#pragma once

#include "props/values/numbers.h"

namespace zck::XMLParse {

/// A path without its last element, and that element. A path of one element has no parent part.
struct SplitPath {
    TextView parent;
    TextView last;
    bool hasParent = false;
};

constexpr size_t kPathSeparatorUnits = 2;

/// The first "::" at or behind `from`, or `npos`.
constexpr size_t FindSeparator(TextView path, size_t from = 0) noexcept {
    for (size_t i = from; i + 1 < path.size(); ++i) {
        if (path[i] == ':' && path[i + 1] == ':') return i;
    }
    return TextView::npos;
}

/// Takes the first element off the path. False when the path is used up.
inline bool NextElement(TextView &path, TextView &element, bool &more) noexcept {
    if (!more) return false;
    const size_t at = FindSeparator(path);
    more = at != TextView::npos;
    element = path.substr(0, at);
    path = more ? path.substr(at + kPathSeparatorUnits) : TextView();
    return true;
}

inline SplitPath SplitLast(TextView path) noexcept {
    SplitPath split{{}, path, false};
    for (size_t at = FindSeparator(path); at != TextView::npos; at = FindSeparator(path, at + kPathSeparatorUnits)) {
        split = {path.substr(0, at), path.substr(at + kPathSeparatorUnits), true};
    }
    return split;
}

/// One element as a child: its name, and which of the children of that name. `effects(2)` is the third.
struct ChildElement {
    TextView name;
    int32_t index = 0;
};

inline ChildElement ChildOf(TextView element) noexcept {
    const size_t bracket = element.find(OLECHAR{'('});
    if (bracket == TextView::npos) return {element, 0};
    return {element.substr(0, bracket), IntFromText(element.substr(bracket + 1))};
}

}    // namespace zck::XMLParse
