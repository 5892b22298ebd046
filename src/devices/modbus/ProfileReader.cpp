#include "devices/modbus/ProfileReader.h"

#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace zr::modbus {
namespace {

constexpr int kVersion = 1;
constexpr std::size_t kMaxText = 200;  // characters of a description or a name of a value
constexpr std::size_t kMaxNamedValues = 64;
constexpr int kMaxExponent = 12;
constexpr int kMaxDecimals = 9;
constexpr int kMaxPeriod = 24 * 60 * 60 * 1000;  // ms
constexpr int kUnitCodes = 256;                  // codes looked through for a symbol

std::optional<std::int32_t> UnitOfSymbol(const ZRBasicString& symbol)
{
    if (symbol.IsEmpty())
        return 0;
    ZRBasicString text;
    for (std::int32_t code = 1; code < kUnitCodes; ++code) {
        MeasureUnitsText(text, code, 0);
        if (text == symbol)
            return code;
    }
    return std::nullopt;
}

bool TakesNumbers(DataType type)
{
    return type != DataType::Bit && type != DataType::Text;
}

DataType ReadType(CheckedNode& node, bool bits)
{
    using enum DataType;
    if (bits)
        return node.OneOf<DataType>("type", {{"bit", Bit}}, Bit);
    return node.OneOf<DataType>("type", {{"u16", U16},
                                         {"i16", I16},
                                         {"u32", U32},
                                         {"i32", I32},
                                         {"u64", U64},
                                         {"i64", I64},
                                         {"f32", F32},
                                         {"f64", F64},
                                         {"bit", Bit},
                                         {"text", Text}});
}

VariableClass ReadClass(CheckedNode& node, bool numbers)
{
    using enum VariableClass;
    return node.OneOf<VariableClass>("class",
                                     {{"instantaneous", Instantaneous},
                                      {"maximum", Maximum},
                                      {"minimum", Minimum},
                                      {"state", State},
                                      {"counter", Counter}},
                                     numbers ? Instantaneous : State);
}

}  // namespace

std::optional<DeviceProfile::Content> ProfileReader::Read(const XmlNode& root)
{
    if (!ReadHead(root))
        return std::nullopt;
    std::unordered_set<ZRBasicString> names;
    for (const XmlNode* child : root.children) {
        if (m_content.variables.size() == DeviceProfile::kMaxVariables) {
            Refuse(*child, fmt::format("more than {} variables", DeviceProfile::kMaxVariables));
            return std::nullopt;
        }
        if (!ReadVariable(*child))
            return std::nullopt;
        const ZRBasicString& name = m_content.variables.back().name;
        if (!names.insert(name).second) {
            Refuse(*child, fmt::format("variable \"{}\": name: used before", Utf16ToUtf8(name)));
            return std::nullopt;
        }
    }
    if (names.empty()) {
        Refuse(root, "no variable");
        return std::nullopt;
    }
    return std::move(m_content);
}

bool ProfileReader::ReadHead(const XmlNode& root)
{
    if (root.tag != u"deviceProfile")
        return Refuse(root, "the root is not \"deviceProfile\"");
    CheckedNode node(root);
    node.Integer("version", kVersion, kVersion);
    m_content.type = node.Id("type");
    m_content.description = node.Text("description", kMaxText);
    m_content.image = node.Text("image", 64, ZRBasicString(u"device"));
    m_content.framing = node.OneOf<Framing>("framing", {{"rtu", Framing::Rtu}, {"tcp", Framing::Tcp}}, Framing::Rtu);
    m_content.period = std::chrono::milliseconds(node.Integer("period", 0, kMaxPeriod, 1000));
    ReadLimits& limits = m_content.limits;
    limits.gapRegisters = static_cast<std::uint16_t>(node.Integer("gapRegisters", 0, kMaxReadRegisters - 1, 0));
    limits.gapBits = static_cast<std::uint16_t>(node.Integer("gapBits", 0, kMaxReadBits - 1, 0));
    limits.maxRegisters =
        static_cast<std::uint16_t>(node.Integer("maxRegisters", 1, kMaxReadRegisters, kMaxReadRegisters));
    limits.maxBits = static_cast<std::uint16_t>(node.Integer("maxBits", 1, kMaxReadBits, kMaxReadBits));
    if (node.Has("filter"))
        m_content.defaultFilter = node.Id("filter");
    node.AllowOnly({"version", "type", "description", "image", "framing", "period", "gapRegisters", "gapBits",
                    "maxRegisters", "maxBits", "filter"});
    return Passed(root, node, "");
}

bool ProfileReader::ReadVariable(const XmlNode& xml)
{
    if (xml.tag != u"variable") {
        return Refuse(
            xml, fmt::format("\"{}\" is not known here, only \"variable\"", CheckedNode::Shown(Utf16ToUtf8(xml.tag))));
    }
    CheckedNode node(xml);
    VariableLayout layout;
    VariableDescription variable;
    variable.name = node.Id("name");
    // The publication looks names up in upper case.
    if (variable.name != ToUpperCase(variable.name))
        node.Fail("name", "must be in upper case");
    variable.description = node.Text("description", kMaxText);
    ReadPlace(node, layout);
    ReadWrite(node, layout);
    variable.output = layout.write.has_value();
    variable.isText = layout.type == DataType::Text;
    ReadScale(node, layout, variable);
    variable.variableClass = ReadClass(node, TakesNumbers(layout.type));
    variable.splittable = node.Flag("splittable", false);
    if (layout.type == DataType::Text)
        node.Forbid("splittable", "a text can't be split");
    if (node.Error().empty() && !ReadNamedValues(xml, layout, variable))
        return false;
    ReadRange(node, layout, variable);
    ReadBounds(node, layout, variable);
    node.AllowOnly(
        {"name",          "description",   "function",      "register",         "type",          "length",   "words",
         "bit",           "write",         "writeRegister", "registerExponent", "valueExponent", "decimals", "unit",
         "unitsExponent", "unitsDecimals", "class",         "splittable",       "minimum",       "maximum",  "nominal",
         "lowWarning",    "lowAlarm",      "highWarning",   "highAlarm"});
    const std::string what =
        variable.name.IsEmpty() ? "variable: " : fmt::format("variable \"{}\": ", Utf16ToUtf8(variable.name));
    if (!Passed(xml, node, what))
        return false;
    m_content.variables.push_back(std::move(variable));
    m_content.layouts.push_back(layout);
    return true;
}

void ProfileReader::ReadPlace(CheckedNode& node, VariableLayout& layout)
{
    layout.function = static_cast<Function>(node.Integer("function", 1, 4));
    layout.first = static_cast<std::uint16_t>(node.Integer("register", 0, 0xFFFF));
    const bool bits = IsBitFunction(layout.function);
    layout.type = ReadType(node, bits);
    layout.count = RegistersOf(layout.type);
    if (layout.type == DataType::Text) {
        layout.count = static_cast<std::uint16_t>(node.Integer("length", 1, kMaxReadRegisters));
    } else {
        node.Forbid("length", "only a text has one");
    }
    if (TakesNumbers(layout.type) && layout.count > 1) {
        layout.words =
            node.OneOf<WordOrder>("words", {{"big", WordOrder::Big}, {"little", WordOrder::Little}}, WordOrder::Big);
    } else {
        node.Forbid("words", "only a number of several registers has a word order");
    }
    if (layout.type == DataType::Bit && !bits) {
        layout.bit = static_cast<std::uint8_t>(node.Integer("bit", 0, 15));
    } else {
        node.Forbid("bit", "only a bit of a register has one");
    }
    if (std::uint32_t{layout.first} + layout.count > 0x10000)
        node.Fail("register", "reaches beyond 65535");
    if (!bits && layout.count > m_content.limits.maxRegisters) {
        node.Fail("type",
                  fmt::format("{} registers, and a request may read {}", layout.count, m_content.limits.maxRegisters));
    }
}

void ProfileReader::ReadWrite(CheckedNode& node, VariableLayout& layout)
{
    if (!node.Has("write")) {
        node.Forbid("writeRegister", "only an output has one, see write");
        return;
    }
    layout.write = node.OneOf<Function>("write", {{"5", Function::WriteSingleCoil},
                                                  {"6", Function::WriteSingleRegister},
                                                  {"15", Function::WriteMultipleCoils},
                                                  {"16", Function::WriteMultipleRegisters}});
    layout.writeFirst = static_cast<std::uint16_t>(node.Integer("writeRegister", 0, 0xFFFF, layout.first));
    const bool sameKind = IsBitFunction(*layout.write) == IsBitFunction(layout.function);
    if (!sameKind)
        node.Fail("write", "bits are written by 5 and 15, registers by 6 and 16");
    if (!IsBitFunction(layout.function) && !TakesNumbers(layout.type)) {
        node.Fail("write", "of what lies in registers, only numbers can be written");
    }
    if (layout.write == Function::WriteSingleRegister && layout.count != 1) {
        node.Fail("write", "function 6 writes one register; use 16");
    }
    if (layout.count > kMaxWriteRegisters || std::uint32_t{layout.writeFirst} + layout.count > 0x10000) {
        node.Fail("writeRegister", "reaches beyond 65535");
    }
}

void ProfileReader::ReadScale(CheckedNode& node, VariableLayout& layout, VariableDescription& variable)
{
    if (layout.type == DataType::Text) {
        for (const char* name : {"unit", "registerExponent", "valueExponent", "decimals", "unitsExponent",
                                 "unitsDecimals", "minimum", "maximum"}) {
            node.Forbid(name, "a text has none");
        }
        return;
    }
    const ZRBasicString symbol = node.Text("unit", 16, ZRBasicString());
    const auto unit = UnitOfSymbol(symbol);
    if (!unit)
        node.Fail("unit", fmt::format("\"{}\" is not known", CheckedNode::Shown(Utf16ToUtf8(symbol))));
    variable.measureUnits = unit.value_or(0);
    if (layout.type == DataType::Bit)
        node.Forbid("registerExponent", "a bit has none");
    layout.registerExponent = node.Integer("registerExponent", -kMaxExponent, kMaxExponent, 0);
    variable.valueExponent = node.Integer("valueExponent", -kMaxExponent, kMaxExponent, 0);
    const int decimals = std::clamp(-layout.registerExponent, 0, kMaxDecimals);
    variable.decimals = node.Integer("decimals", 0, kMaxDecimals, decimals);
    variable.unitsExponent = node.Integer("unitsExponent", -kMaxExponent, kMaxExponent, variable.valueExponent);
    // As many as show the same digits in the displayed unit.
    const int shown = std::clamp(variable.decimals + variable.unitsExponent - variable.valueExponent, 0, kMaxDecimals);
    variable.unitsDecimals = node.Integer("unitsDecimals", 0, kMaxDecimals, shown);
}

void ProfileReader::ReadRange(CheckedNode& node, const VariableLayout& layout, VariableDescription& variable)
{
    if (layout.type == DataType::Text)
        return;
    if (!variable.values.empty()) {
        node.Forbid("minimum", "the named values are the range");
        node.Forbid("maximum", "the named values are the range");
        const auto [lowest, highest] = std::minmax_element(variable.values.begin(), variable.values.end());
        variable.minimum = *lowest;
        variable.maximum = *highest;
        return;
    }
    if (layout.type == DataType::Bit) {
        variable.maximum = 1.0;
        return;
    }
    constexpr double kLargest = std::numeric_limits<double>::max();
    if (node.Has("minimum") != node.Has("maximum"))
        node.Fail("minimum", "stands only together with maximum");
    variable.minimum = node.Number("minimum", -kLargest, kLargest, 0.0);
    variable.maximum = node.Number("maximum", -kLargest, kLargest, 0.0);
    if (node.Has("minimum") && !(variable.minimum < variable.maximum))
        node.Fail("maximum", "not above minimum");
}

void ProfileReader::ReadBounds(CheckedNode& node, const VariableLayout& layout, VariableDescription& variable)
{
    const bool named = !variable.values.empty();
    if (!TakesNumbers(layout.type) || named || !node.Has("nominal")) {
        const char* const reason = !TakesNumbers(layout.type) || named ? "only a number has one" : "needs nominal";
        for (const char* name : {"nominal", "lowWarning", "lowAlarm", "highWarning", "highAlarm"})
            node.Forbid(name, reason);
        return;
    }
    constexpr double kLargest = std::numeric_limits<double>::max();
    const bool isFolded = variable.measureUnits == static_cast<std::int32_t>(MeasureUnit::PowerFactor);
    // Where a number stands on the scale that the limits are compared on.
    const auto scale = [isFolded](double x) { return isFolded && x < 0.0 ? x + 2.0 : x; };
    VariableLimits limits;
    limits.nominal = node.Number("nominal", -kLargest, kLargest);
    limits.hasLow = node.Has("lowAlarm") || node.Has("lowWarning");
    limits.hasHigh = node.Has("highAlarm") || node.Has("highWarning");
    if (!(limits.nominal > 0.0))
        node.Fail("nominal", "not above 0");
    if (!limits.hasLow && !limits.hasHigh)
        node.Fail("nominal", "stands only with limits");
    if (limits.hasLow) {
        limits.lowAlarm = node.Number("lowAlarm", -kLargest, kLargest);
        limits.lowWarning = node.Number("lowWarning", -kLargest, kLargest, limits.lowAlarm);
        if (!(scale(limits.lowAlarm) <= scale(limits.lowWarning) && scale(limits.lowWarning) < limits.nominal))
            node.Fail("lowWarning", "not from lowAlarm to below nominal");
    }
    if (limits.hasHigh) {
        limits.highAlarm = node.Number("highAlarm", -kLargest, kLargest);
        limits.highWarning = node.Number("highWarning", -kLargest, kLargest, limits.highAlarm);
        if (!(limits.nominal < scale(limits.highWarning) && scale(limits.highWarning) <= scale(limits.highAlarm)))
            node.Fail("highWarning", "not from above nominal to highAlarm");
    }
    variable.limits = limits;
}

bool ProfileReader::ReadNamedValues(const XmlNode& xml, const VariableLayout& layout, VariableDescription& variable)
{
    const bool bit = layout.type == DataType::Bit;
    for (const XmlNode* child : xml.children) {
        CheckedNode node(*child);
        if (child->tag != u"value")
            node.Fail(CheckedNode::Shown(Utf16ToUtf8(child->tag)), "only \"value\" is known here");
        if (variable.values.size() == kMaxNamedValues) {
            node.Fail("value", fmt::format("more than {} named values", kMaxNamedValues));
        }
        if (layout.type == DataType::Text)
            node.Fail("value", "a text has no named values");
        const int number = node.Integer("number", bit ? 0 : std::numeric_limits<int>::min(),
                                        bit ? 1 : std::numeric_limits<int>::max());
        ZRBasicString text = node.Text("text", kMaxText);
        if (text.IsEmpty())
            node.Fail("text", "empty");
        if (!child->children.empty())
            node.Fail("value", "holds no further elements");
        node.AllowOnly({"number", "text"});
        const auto& numbers = variable.values;
        const auto& texts = variable.valueTexts;
        if (std::find(numbers.begin(), numbers.end(), number) != numbers.end())
            node.Fail("number", "used before");
        if (std::find(texts.begin(), texts.end(), text) != texts.end())
            node.Fail("text", "used before");
        if (!Passed(*child, node, fmt::format("variable \"{}\": value: ", Utf16ToUtf8(variable.name))))
            return false;
        variable.values.push_back(number);
        variable.valueTexts.push_back(std::move(text));
    }
    return true;
}

bool ProfileReader::Passed(const XmlNode& node, const CheckedNode& checked, const std::string& what)
{
    return checked.Error().empty() || Refuse(node, what + checked.Error());
}

bool ProfileReader::Refuse(const XmlNode& node, const std::string& reason)
{
    m_error = fmt::format("{}:{}: {}", m_file, node.Line(), reason);
    return false;
}

}  // namespace zr::modbus
