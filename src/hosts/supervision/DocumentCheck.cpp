#include "hosts/supervision/DocumentCheck.h"

#include "siblings/driversupport/ConnectionTypes.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <memory>
#include <set>

namespace zr::supervision {
namespace {

class Check {
public:
    void Connections(const XmlNode* list)
    {
        for (const XmlNode* node : Children(list, u"Connection")) {
            Connection(*node);
        }
    }

    void Devices(const XmlNode* list)
    {
        for (const XmlNode* node : Children(list, u"Device")) {
            Device(*node);
        }
    }

    std::vector<Finding> findings;

private:
    static std::vector<const XmlNode*> Children(const XmlNode* list, const wchar* tag)
    {
        std::vector<const XmlNode*> found;
        if (list != nullptr) {
            for (const XmlNode* child : list->children) {
                if (child->tag == tag) {
                    found.push_back(child);
                }
            }
        }
        return found;
    }

    void Add(const XmlNode& node, DeviceWarning type, const ZRBasicString& name, const ZRBasicString& detail = {})
    {
        findings.push_back({node.Line(), {type, name, {}, detail}});
    }

    void Connection(const XmlNode& node)
    {
        const ZRBasicString name = node.Value(u"Name", u"");
        const ZRBasicString type = node.Value(u"Type", u"");
        const std::unique_ptr<ZRDeviceConnection> connection = MakeConnection(type);
        if (connection == nullptr) {
            Add(node, DeviceWarning::UnknownConnectionType, name, ZRBasicString(u"(\"") + type + u"\")");
            return;
        }
        if (!connection->LoadCfg(node)) {
            Add(node, DeviceWarning::ConnectionRejected, name, connection->LoadError());
            return;
        }
        m_exactNames.insert(name);
        // The dialogs compare names of connections without regard to case.
        if (!m_connections.insert(ToUpperCase(name)).second) {
            Add(node, DeviceWarning::DuplicateConnection, name);
        }
    }

    void Device(const XmlNode& node)
    {
        const ZRBasicString name = node.Value(u"Name", u"");
        const ZRBasicString type = node.Value(u"Driver", u"");
        const std::unique_ptr<ZRDeviceDriver> driver(ZRDeviceDriver::NewDriver(type));
        if (driver == nullptr) {
            Add(node, DeviceWarning::UnknownDeviceType, name, ZRBasicString(u"(\"") + type + u"\")");
            return;
        }
        if (!driver->LoadCfg(node)) {
            Add(node, DeviceWarning::DeviceRejected, name, driver->LoadError());
            return;
        }
        if (!m_devices.insert(name).second) {
            Add(node, DeviceWarning::DuplicateDevice, name);
        }
        const ZRBasicString connection = node.Value(u"Connection", u"");
        if (!m_exactNames.contains(connection)) {
            Add(node, DeviceWarning::ConnectionMissing, name, ZRBasicString(u"(\"") + connection + u"\")");
        }
    }

    std::set<ZRBasicString> m_connections;  // upper case
    std::set<ZRBasicString> m_exactNames;
    std::set<ZRBasicString> m_devices;
};

}  // namespace

std::vector<Finding> CheckDocument(const XmlNode* commSystem)
{
    Check check;
    if (commSystem != nullptr) {
        check.Connections(commSystem->Node(u"Connections"));
        check.Devices(commSystem->Node(u"Devices"));
    }
    return std::move(check.findings);
}

}  // namespace zr::supervision
