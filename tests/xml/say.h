// Texts and trees of the tests as plain characters.
#pragma once

#include <string>
#include <string_view>

#include "xml/parser.h"
#include "xml/writer.h"

/// UTF-8 to text and back, so that a failed comparison prints what was read.
inline zck::Text In(std::string_view utf8) { return zck::TextFromUtf8(utf8); }
inline std::string Say(zck::TextView text) { return zck::Utf8FromText(text); }

/// A counted string of an argument.
inline zck::Bstr Arg(std::string_view utf8) { return zck::Bstr(In(utf8)); }

/// The tree of a text; empty when the text has none.
inline zck::XMLParse::XMLNodePtr Tree(std::string_view xml) {
    zck::XMLParse::XMLNodePtr node = zck::XMLParse::CoXMLNode::Create(In("before"));
    if (FAILED(zck::XMLParse::ParseXML(*node, In(xml)))) node.Reset();
    return node;
}

/// A tree in one line.
inline std::string Line(const zck::XMLParse::XMLNodePtr &node) {
    return node ? Say(zck::XMLParse::XMLText(*node, -1)) : std::string("none");
}

/// What a text is read as, in one line.
inline std::string Read(std::string_view xml) { return Line(Tree(xml)); }
