#include "tests/house/layers.h"

#include <set>
#include <sstream>

namespace house {
namespace {

bool IsInFolder(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

bool IsRoomOrBelow(std::string_view room, std::string_view name) { return room == name || IsInFolder(room, name); }

// The path in the tree that an include names; empty for a header of the system or of a library.
std::string TreePath(const Layers &layers, const Include &include) {
    if (IsInFolder(include.name, "zchromakey")) return "include/" + include.name;
    return RoomOf(layers, include.name).empty() ? std::string() : include.name;
}

bool IsBackEnd(std::string_view path) {
    return path.find("/win32/") != std::string_view::npos || path.find("/posix/") != std::string_view::npos;
}

bool MayInclude(const Layers &layers, const std::string &from, const std::string &to) {
    if (from == to) return true;
    for (const std::string &name : layers.at(from)) {
        if (IsRoomOrBelow(to, name)) return true;
    }
    return false;
}

void CheckInclude(const Layers &layers, const SourceFile &file, const std::string &room, const Include &include,
                  std::vector<std::string> &findings) {
    const std::string path = TreePath(layers, include);
    if (path.empty()) {
        // A header without a folder is one of the two back-ends of the same room.
        const bool backEnd = include.name.find('/') == std::string::npos && include.name.ends_with("_slots.h");
        if (include.quoted && !include.name.starts_with("gtest/") && !backEnd) {
            findings.push_back(Finding(file, include.line, "\"" + include.name + "\" is not written from the top of the tree"));
        }
        return;
    }
    const std::string other = RoomOf(layers, path);
    if (!MayInclude(layers, room, other)) findings.push_back(Finding(file, include.line, room + " may not include " + other));
    if (other != room && IsBackEnd(path)) findings.push_back(Finding(file, include.line, "back-end of " + other));
}

// Follows the arrows from `at`; true when one of them ends in `room`.
bool LeadsTo(const Layers &layers, const std::string &at, const std::string &room, std::set<std::string> &seen) {
    for (const auto &[next, unused] : layers) {
        if (next == at || !MayInclude(layers, at, next)) continue;
        if (next == room) return true;
        if (seen.insert(next).second && LeadsTo(layers, next, room, seen)) return true;
    }
    return false;
}

}    // namespace

Layers LayersFromText(std::string_view text) {
    Layers layers;
    std::istringstream stream{std::string(text)};
    for (std::string line; std::getline(stream, line);) {
        line = line.substr(0, line.find('#'));
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        const size_t colon = line.find(':');
        std::vector<std::string> &allowed = layers[colon == std::string::npos ? "?" : line.substr(0, colon)];
        std::istringstream names(line.substr(colon == std::string::npos ? line.size() : colon + 1));
        for (std::string name; names >> name;) allowed.push_back(name);
    }
    return layers;
}

std::string RoomOf(const Layers &layers, std::string_view path) {
    std::string best;
    for (const auto &[room, unused] : layers) {
        if (IsInFolder(path, room) && room.size() > best.size()) best = room;
    }
    return best;
}

std::vector<std::string> LayerFindings(const Layers &layers, const std::vector<SourceFile> &files) {
    std::vector<std::string> findings;
    for (const SourceFile &file : files) {
        const std::string room = RoomOf(layers, file.path);
        if (room.empty()) {
            findings.push_back(file.path + ": in no room of the table");
            continue;
        }
        for (const Include &include : IncludesOf(file)) CheckInclude(layers, file, room, include, findings);
    }
    return findings;
}

std::vector<std::string> Circles(const Layers &layers) {
    std::vector<std::string> rooms;
    for (const auto &[room, unused] : layers) {
        std::set<std::string> seen;
        if (LeadsTo(layers, room, room, seen)) rooms.push_back(room);
    }
    return rooms;
}

}    // namespace house
