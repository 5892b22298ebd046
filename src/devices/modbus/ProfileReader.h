// Takes a device profile out of its document, every value checked.
#pragma once

#include "devices/modbus/CheckedNode.h"
#include "devices/modbus/DeviceProfile.h"

#include <optional>
#include <string>

namespace zr::modbus {

// Reads one document. The rules are those of docs/formats/device-profile.md.
class ProfileReader {
public:
    // name stands for the file in errors.
    explicit ProfileReader(std::string name) : m_file(std::move(name)) {}

    // Empty at the first fault, which Error() tells.
    std::optional<DeviceProfile::Content> Read(const XmlNode& root);
    // "FILE:LINE: REASON".
    [[nodiscard]] const std::string& Error() const { return m_error; }

private:
    bool ReadHead(const XmlNode& root);
    bool ReadVariable(const XmlNode& node);
    void ReadPlace(CheckedNode& node, VariableLayout& layout);
    void ReadWrite(CheckedNode& node, VariableLayout& layout);
    void ReadScale(CheckedNode& node, VariableLayout& layout, VariableDescription& variable);
    void ReadRange(CheckedNode& node, const VariableLayout& layout, VariableDescription& variable);
    void ReadBounds(CheckedNode& node, const VariableLayout& layout, VariableDescription& variable);
    bool ReadNamedValues(const XmlNode& node, const VariableLayout& layout, VariableDescription& variable);
    // Keeps the fault of a node; true if it has none.
    bool Passed(const XmlNode& node, const CheckedNode& checked, const std::string& what);
    bool Refuse(const XmlNode& node, const std::string& reason);

    std::string m_file;
    std::string m_error;
    DeviceProfile::Content m_content;
};

}  // namespace zr::modbus
