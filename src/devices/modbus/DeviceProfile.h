// What a type of device measures and how it is asked: the content of one profile file.
#pragma once

#include "devices/modbus/ReadPlan.h"
#include "devices/modbus/VariableCodec.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/tools/ZRBasicString.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr::modbus {

// Immutable and shared by all devices of the type. Any thread. The file format is told in
// docs/formats/device-profile.md.
class DeviceProfile {
public:
    static constexpr std::size_t kMaxVariables = 2000;

    // What a file tells.
    struct Content {
        ZRBasicString type;         // the `Driver` value of a device; by IsValidId
        ZRBasicString description;  // for people
        ZRBasicString image;        // name of the icon
        Framing framing = Framing::Rtu;
        std::chrono::milliseconds period{1000};      // default; 0: continuous
        ReadLimits limits;                           // for merging reads
        std::optional<ZRBasicString> defaultFilter;  // title of the `.MVDF` file; empty: the type can't have one
        std::vector<VariableDescription> variables;
        std::vector<VariableLayout> layouts;  // position by position
    };

    // Null, with error "FILE:LINE: REASON" naming the faulty value, when the file can't be read or anything in it
    // breaks a rule.
    static std::shared_ptr<const DeviceProfile> Load(const std::filesystem::path& file, std::string& error);
    // As Load, from bytes in memory; name stands for the file in errors.
    static std::shared_ptr<const DeviceProfile> LoadText(std::string_view bytes, const std::string& name,
                                                         std::string& error);

    explicit DeviceProfile(Content content);

    [[nodiscard]] const ZRBasicString& Type() const { return m_content.type; }
    [[nodiscard]] const ZRBasicString& Description() const { return m_content.description; }
    [[nodiscard]] const ZRBasicString& Image() const { return m_content.image; }
    [[nodiscard]] Framing FrameForm() const { return m_content.framing; }
    [[nodiscard]] std::chrono::milliseconds Period() const { return m_content.period; }
    [[nodiscard]] const ReadLimits& Limits() const { return m_content.limits; }
    // Null when the type can't have a filter; otherwise lives as long as this.
    [[nodiscard]] const ZRBasicString* DefaultFilter() const
    {
        return m_content.defaultFilter ? &*m_content.defaultFilter : nullptr;
    }
    [[nodiscard]] const std::shared_ptr<const VariableTable>& Variables() const { return m_table; }
    // Of the variable at that position of Variables(); no range test.
    [[nodiscard]] const VariableLayout& Layout(std::size_t index) const { return m_content.layouts[index]; }
    // The requests of one cycle; the items are positions of Variables().
    [[nodiscard]] const std::vector<PlannedRead>& Plan() const { return m_plan; }
    // The position in Plan() of the request that reads a variable.
    [[nodiscard]] std::size_t ReadOf(std::size_t variable) const { return m_readOf[variable]; }

private:
    Content m_content;
    std::shared_ptr<const VariableTable> m_table;
    std::vector<PlannedRead> m_plan;
    std::vector<std::size_t> m_readOf;
};

}  // namespace zr::modbus
