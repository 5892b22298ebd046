#include "devices/simulation/PlantDescription.h"

#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlDocument.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <optional>
#include <set>

namespace zr {
namespace {

constexpr std::size_t kMaxName = 64;

// Letters, digits, "-" and "_": a name is a word in the commands and a field in the truth file.
bool IsPlantName(std::string_view name)
{
    const auto good = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    };
    return !name.empty() && name.size() <= kMaxName && name != "all" && std::all_of(name.begin(), name.end(), good);
}

std::string NumberText(double number)
{
    std::array<char, 32> text = {};
    const auto [end, code] = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    return code == std::errc() ? std::string(text.data(), end) : std::string();
}

// Reads one file; the first fault found ends it.
class Reader {
public:
    Reader(PlantDescription& plant, std::string& error) : m_plant(plant), m_error(error) {}
    bool ReadPlant(const XmlNode& root, const std::filesystem::path& folder);

private:
    bool Refuse(const XmlNode& node, const std::string& reason)
    {
        m_error = m_plant.file + ":" + std::to_string(node.Line()) + ": " + reason;
        return false;
    }
    static std::string Tag(const XmlNode& node) { return Utf16ToUtf8(node.tag); }
    static std::string Text(const XmlNode& node, const wchar* name) { return Utf16ToUtf8(node.Value(name, u"")); }

    bool Known(const XmlNode& node, std::initializer_list<const wchar*> names);
    bool Name(const XmlNode& node, std::set<std::string>& taken, std::string& name);
    bool Number(const XmlNode& node, const wchar* name, double least, double most, double& number);
    bool ReadChild(const XmlNode& node);
    bool ReadLine(const XmlNode& node, PlantLine::Kind kind);
    bool ReadDevice(const XmlNode& node, PlantLine& line);
    bool ReadFault(const XmlNode& node);
    bool CheckFaults();

    PlantDescription& m_plant;
    std::string& m_error;
    std::set<std::string> m_lineNames;
    std::set<std::string> m_deviceNames;
    std::vector<const XmlNode*> m_faultNodes;
};

bool Reader::Known(const XmlNode& node, std::initializer_list<const wchar*> names)
{
    for (const ZRBasicString& given : node.ValueNames()) {
        const bool known = std::any_of(names.begin(), names.end(), [&](const wchar* name) { return given == name; });
        if (!known) {
            return Refuse(node, "unknown value " + Utf16ToUtf8(given) + " of " + Tag(node));
        }
    }
    return true;
}

bool Reader::Name(const XmlNode& node, std::set<std::string>& taken, std::string& name)
{
    name = Text(node, u"Name");
    if (!IsPlantName(name)) {
        return Refuse(node, "Name of " + Tag(node) + " must be 1 to 64 letters, digits, \"-\" or \"_\", not \"all\"");
    }
    if (!taken.insert(name).second) {
        return Refuse(node, "Name \"" + name + "\" is taken");
    }
    return true;
}

bool Reader::Number(const XmlNode& node, const wchar* name, double least, double most, double& number)
{
    if (!node.HasValue(name)) {
        return true;
    }
    const std::string text = Text(node, name);
    double value = 0.0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (code != std::errc() || end != text.data() + text.size() || !(value >= least && value <= most)) {
        const std::string limits = NumberText(least) + " to " + NumberText(most);
        return Refuse(node, Utf16ToUtf8(name) + " must be a number from " + limits);
    }
    number = value;
    return true;
}

bool Reader::ReadPlant(const XmlNode& root, const std::filesystem::path& folder)
{
    if (Tag(root) != "Plant") {
        return Refuse(root, "the root must be Plant");
    }
    if (!Known(root, {u"Series", u"Profiles"})) {
        return false;
    }
    for (const wchar* name : {u"Series", u"Profiles"}) {
        if (root.Value(name, u"").IsEmpty()) {
            return Refuse(root, "Plant needs the value " + Utf16ToUtf8(name));
        }
    }
    m_plant.series = folder / std::filesystem::path(root.Value(u"Series", u"").Text());
    m_plant.profileFolder = folder / std::filesystem::path(root.Value(u"Profiles", u"").Text());
    for (const XmlNode* child : root.children) {
        if (!ReadChild(*child)) {
            return false;
        }
    }
    if (m_deviceNames.empty()) {
        return Refuse(root, "the plant has no device");
    }
    return CheckFaults();
}

bool Reader::ReadChild(const XmlNode& node)
{
    const std::string tag = Tag(node);
    if (tag == "Converter") {
        return ReadLine(node, PlantLine::Kind::Converter);
    }
    if (tag == "SerialLine") {
        return ReadLine(node, PlantLine::Kind::Serial);
    }
    if (tag == "Fault") {
        return ReadFault(node);
    }
    return Refuse(node, "unknown element " + tag);
}

bool Reader::ReadLine(const XmlNode& node, PlantLine::Kind kind)
{
    PlantLine line;
    line.kind = kind;
    double port = 0.0;
    const bool isConverter = kind == PlantLine::Kind::Converter;
    const bool known = isConverter ? Known(node, {u"Name", u"Address", u"Port"}) : Known(node, {u"Name", u"Link"});
    if (!known || !Name(node, m_lineNames, line.name) || !Number(node, u"Port", 0, 65535, port)) {
        return false;
    }
    if (port != static_cast<double>(static_cast<std::uint16_t>(port))) {
        return Refuse(node, "Port must be a whole number");
    }
    line.port = static_cast<std::uint16_t>(port);
    line.address = node.HasValue(u"Address") ? Text(node, u"Address") : "127.0.0.1";
    line.link = Text(node, u"Link");
    for (const XmlNode* child : node.children) {
        if (!ReadDevice(*child, line)) {
            return false;
        }
    }
    m_plant.lines.push_back(std::move(line));
    return true;
}

bool Reader::ReadDevice(const XmlNode& node, PlantLine& line)
{
    if (Tag(node) != "Device") {
        return Refuse(node, "unknown element " + Tag(node));
    }
    if (m_deviceNames.size() == PlantDescription::kMaxDevices) {
        return Refuse(node, "more than " + std::to_string(PlantDescription::kMaxDevices) + " devices");
    }
    PlantDevice device;
    device.fileLine = node.Line();
    device.profile = Text(node, u"Profile");
    double unit = 0.0;
    double activeKwh = 0.0;
    double reactiveKvarh = 0.0;
    const bool read = Known(node, {u"Name", u"Profile", u"Unit", u"Scale", u"ShiftMinutes", u"CapacitorVar",
                                   u"ActiveKwh", u"ReactiveKvarh"}) &&
                      Name(node, m_deviceNames, device.name) && Number(node, u"Unit", 1, 247, unit) &&
                      Number(node, u"Scale", 0.001, 10'000, device.meter.scale) &&
                      Number(node, u"ShiftMinutes", 0, 1'000'000, device.meter.shiftMinutes) &&
                      Number(node, u"CapacitorVar", 0, 1'000'000, device.meter.capacitorVar) &&
                      Number(node, u"ActiveKwh", 0, 1'000'000, activeKwh) &&
                      Number(node, u"ReactiveKvarh", 0, 1'000'000, reactiveKvarh);
    if (!read) {
        return false;
    }
    if (!IsPlantName(device.profile)) {
        return Refuse(node, "Profile must name a device profile");
    }
    device.unit = static_cast<std::uint8_t>(unit);
    if (unit != static_cast<double>(device.unit) || device.unit == 0) {
        return Refuse(node, "Unit must be a whole number from 1 to 247");
    }
    for (const PlantDevice& other : line.devices) {
        if (other.unit == device.unit) {
            return Refuse(node, "Unit " + std::to_string(device.unit) + " is taken by " + other.name);
        }
    }
    if (!node.children.empty()) {
        return Refuse(*node.children.front(), "unknown element " + Tag(*node.children.front()));
    }
    device.meter.activeWhBefore = activeKwh * 1000.0;
    device.meter.reactiveVarhBefore = reactiveKvarh * 1000.0;
    line.devices.push_back(std::move(device));
    return true;
}

bool Reader::ReadFault(const XmlNode& node)
{
    if (!Known(node, {u"Device", u"Kind", u"DelayMs", u"Probability"})) {
        return false;
    }
    const std::string kind = Text(node, u"Kind");
    const std::string target = Text(node, u"Device");
    if (target != "all" && !IsPlantName(target)) {
        return Refuse(node, "Device of Fault must be the name of a device, or \"all\"");
    }
    if (kind == "none" || (kind != "late" && node.HasValue(u"DelayMs"))) {
        return Refuse(node, kind == "none" ? "Kind can't be none here" : "DelayMs is for the kind late alone");
    }
    std::string text = target + " " + kind;
    if (node.HasValue(u"DelayMs")) {
        text += " " + Text(node, u"DelayMs");
    } else if (kind == "late") {
        text += " " + std::to_string(kDefaultDelay.count());
    }
    text += " " + Text(node, u"Probability");
    FaultOrder order;
    std::string reason;
    if (!ParseFaultOrder(text, order, reason)) {
        return Refuse(node, reason);
    }
    m_plant.faults.push_back(order);
    m_faultNodes.push_back(&node);
    return true;
}

bool Reader::CheckFaults()
{
    for (std::size_t i = 0; i < m_faultNodes.size(); ++i) {
        const std::string& target = m_plant.faults[i].target;
        if (target != "all" && !m_deviceNames.contains(target)) {
            return Refuse(*m_faultNodes[i], "there is no device \"" + target + "\"");
        }
    }
    return true;
}

bool Read(const XmlDocument& document, bool loaded, const std::filesystem::path& path, PlantDescription& plant,
          std::string& error)
{
    plant = PlantDescription();
    plant.file = path.string();
    const bool good = loaded && Reader(plant, error).ReadPlant(*document.root, path.parent_path());
    if (!loaded) {
        error = document.Error().Message();
    }
    if (!good) {
        plant = PlantDescription();
    }
    return good;
}

}  // namespace

bool PlantDescription::Load(const std::filesystem::path& path, std::string& error)
{
    XmlDocument document;
    const bool loaded = document.Load(path);
    return Read(document, loaded, path, *this, error);
}

bool PlantDescription::LoadText(std::string_view text, const std::filesystem::path& path, std::string& error)
{
    XmlDocument document;
    const bool loaded = document.LoadText(text, path.string());
    return Read(document, loaded, path, *this, error);
}

}  // namespace zr
