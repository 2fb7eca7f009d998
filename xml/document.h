// Trees in files.
#pragma once

#include "xml/node.h"

namespace zck::XMLParse {

/// Reads a file of any supported encoding into the node; statuses of the system, or of `ParseXML`. A file that cannot be read
/// leaves the node as it was.
HRESULT LoadFile(CoXMLNode &node, TextView path) noexcept;

/// Writes the node to a file, replacing any old one: 16-bit units without a byte order mark, or bytes of the system's code
/// page. `out`, when given, takes the text. With an empty path no file is written.
///
/// A file that cannot be created or written is not noticed: hosts rely on `S_OK`. `E_UNEXPECTED` for an empty text, behind the
/// creation of the file.
HRESULT SaveFile(CoXMLNode &node, TextView path, bool unicode, BSTR *out = nullptr) noexcept;

}    // namespace zck::XMLParse
