// The part of `IZPersistImpl` that deals with parameters, trees and files and knows no class.
#pragma once

#include "xml/node.h"

namespace zck {

/// Which way data move between an object and a tree.
enum class Transfer { Save, Load };

/// The parameters of one call, read from their text: the node "param".
class PersistParams {
public:
    /// `kErrorTooLarge` for too many pairs.
    HRESULT Read(BSTR list);

    const XMLParse::XMLNodePtr &Node() const noexcept { return m_node; }
    /// The file in question; empty for none.
    Text Path() const;
    /// A path that the caller gave stays.
    void PathDefault(TextView path);
    bool Unicode() const;

private:
    XMLParse::XMLNodePtr m_node;
};

/// A free node for a saving, "m_config".
XMLParse::XMLNodePtr SavingRoot();
/// A free node for a loading; it takes the name of the element that it reads.
XMLParse::XMLNodePtr LoadingRoot();

/// Fills the root from the file of that name, or from the text itself where there is no such file. `filePath` takes the path of
/// the file, which also becomes the parameter unless one was given.
HRESULT LoadTextOrFile(XMLParse::CoXMLNode &root, TextView text, PersistParams &params, Text &filePath);

}    // namespace zck
