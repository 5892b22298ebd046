#include "logger/ViewerSettings.h"

#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"

namespace zr::logger {

XmlNode& GetOrCreate(XmlNode& parent, const wchar* tag)
{
    XmlNode* const node = parent.Node(tag);
    return node != nullptr ? *node : *parent.NewChild(tag);
}

void RemoveAll(XmlNode& parent, const wchar* tag)
{
    while (XmlNode* const child = parent.Node(tag)) {
        parent.RemoveChild(child);
    }
}

int NumberOf(const XmlNode& node, const wchar* name)
{
    return TextToInt(node.Value(name, u""));
}

void SetNumber(XmlNode& node, const wchar* name, int number)
{
    node.SetValue(name, FormatText(u"%d", {number}));
}

}  // namespace zr::logger
