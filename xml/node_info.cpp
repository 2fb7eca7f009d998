// Attribute information: what a tree tells about its attributes.
//
//   <attributes_info inherit='true'>            on the node, on its parent, or further up
//     <size type='integer' default='4'>help     describes the attribute `size`
//       <small>help of the option</small>
//     </size>
//     <blur inherit='filter'> <size .../> </blur>    further up: describes attributes of nodes named `blur` or `blur.*`
//   </attributes_info>
#include "xml/node.h"
#include "xml/path.h"

namespace zck::XMLParse {
namespace {

/// Classes that continue in one another; more are taken for a circle.
constexpr int kClassesInRow = 64;

bool Describes(CoXMLNode &place) { return place.ChildAt(Children::Elements, 0).get() != nullptr; }

bool StopsSearch(const XMLNodePtr &info) { return info && !info->BoolGet(ZCK_TEXT("inherit"), true); }

Text AttributeOf(CoXMLNode &node, TextView name) {
    Text text;
    node.AttributeText(name, text);
    return text;
}

/// The class node of a name: the whole name, or its part before the first dot.
XMLNodePtr ClassNamed(CoXMLNode &info, TextView name) {
    XMLNodePtr found = info.ChildFind(name);
    const size_t dot = name.find(OLECHAR{'.'});
    return found || dot == TextView::npos ? found : info.ChildFind(name.substr(0, dot));
}

/// Walks from a class to the one that it inherits until `take` is content.
template <class Take>
XMLNodePtr WalkClasses(CoXMLNode &info, TextView name, Take take) {
    XMLNodePtr at = ClassNamed(info, name);
    for (int i = 0; at && i < kClassesInRow; ++i) {
        if (XMLNodePtr taken = take(at)) return taken;
        at = info.ChildFind(AttributeOf(*at, ZCK_TEXT("inherit")));
    }
    return {};
}

/// Where a description sends the reader for its values: a neighbour in the same information, or a path from the root.
XMLNodePtr SelectFrom(CoXMLNode &info, TextView name) {
    XMLNodePtr root(&info);
    for (XMLNodePtr up = info.ParentGet(); up; up = up->ParentGet()) {
        // The description of a class stands one node deeper.
        if (root.get() == &info || up->KeyGet() == NameKey(kAttributesInfo)) {
            if (XMLNodePtr found = up->ChildFind(name)) return found;
        }
        root = up;
    }
    return root->NodeFind(name);
}

Text ValuesOf(CoXMLNode &info) {
    Text values = AttributeOf(info, ZCK_TEXT("values"));
    const bool hasOptions = Describes(info);
    if (values.empty() && !hasOptions) {
        const Text from = AttributeOf(info, ZCK_TEXT("select_from"));
        const XMLNodePtr other = from.empty() ? XMLNodePtr() : SelectFrom(info, from);
        if (other) values = AttributeOf(*other, ZCK_TEXT("values"));
    }
    if (!values.empty() || !hasOptions) return values;
    for (const XMLNodePtr &option : info.ChildrenGet(Children::Elements)) {
        if (!values.empty()) values.push_back('|');
        values.append(option->NameGet());
    }
    return values;
}

}    // namespace

XMLNodePtr XMLNodeImpl::InfoNode() { return ChildFind(kAttributesInfo); }

XMLNodePtr XMLNodeImpl::AncestorInfo() {
    for (XMLNodePtr up = ParentGet(); up; up = up->ParentGet()) {
        if (XMLNodePtr info = up->InfoNode()) return info;
    }
    return {};
}

XMLNodePtr XMLNodeImpl::InfoFind(TextView attribute) {
    TextView name;
    const XMLNodePtr owner = AttributeOwner(attribute, name);
    if (!owner || name.empty()) return {};
    const XMLNodePtr own = owner->InfoNode();
    XMLNodePtr found = own ? own->ChildFind(name) : XMLNodePtr();
    if (found || StopsSearch(own)) return found;
    const XMLNodePtr parent = owner->ParentGet();
    const XMLNodePtr ofParent = parent ? parent->InfoNode() : XMLNodePtr();
    if (ofParent) found = ofParent->ChildFind(name);
    if (found) return found;
    const XMLNodePtr ofAncestor = owner->AncestorInfo();
    if (!ofAncestor) return {};
    return WalkClasses(*ofAncestor, owner->NameGet(), [&](const XMLNodePtr &at) { return at->ChildFind(name); });
}

XMLNodePtr XMLNodeImpl::InfoPlace() {
    const XMLNodePtr own = InfoNode();
    if (own && Describes(*own)) return own;
    if (StopsSearch(own)) return {};
    const XMLNodePtr parent = ParentGet();
    XMLNodePtr ofParent = parent ? parent->InfoNode() : XMLNodePtr();
    if (ofParent && Describes(*ofParent)) return ofParent;
    const XMLNodePtr ofAncestor = AncestorInfo();
    if (!ofAncestor) return {};
    return WalkClasses(*ofAncestor, NameGet(), [](const XMLNodePtr &at) { return Describes(*at) ? at : XMLNodePtr(); });
}

Text XMLNodeImpl::InfoText(CoXMLNode &info, eZInfoType type) {
    switch (type) {
        case eZIT_Help:
            return info.TextGet();
        case eZIT_Type:
            return AttributeOf(info, ZCK_TEXT("type"));
        case eZIT_Default:
            return AttributeOf(info, ZCK_TEXT("default"));
        case eZIT_Values:
            return ValuesOf(info);
        case eZIT_Min:
            return AttributeOf(info, ZCK_TEXT("min"));
        case eZIT_Max:
            return AttributeOf(info, ZCK_TEXT("max"));
        case eZIT_Node:
            break;
    }
    return Text();
}

}    // namespace zck::XMLParse
