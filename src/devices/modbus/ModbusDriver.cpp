#include "devices/modbus/ModbusDriver.h"

#include "devices/modbus/CheckedNode.h"
#include "platform/Clock.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zr::modbus {
namespace {

constexpr double kMaxPeriod = 86400.0;  // s
constexpr std::size_t kMaxDescription = 200;

const char* ExceptionText(Exception exception)
{
    switch (exception) {
        case Exception::None:
            break;
        case Exception::IllegalFunction:
            return "illegal function";
        case Exception::IllegalDataAddress:
            return "illegal data address";
        case Exception::IllegalDataValue:
            return "illegal data value";
        case Exception::ServerDeviceFailure:
            return "device failure";
        case Exception::Acknowledge:
            return "still at work";
        case Exception::ServerDeviceBusy:
            return "device busy";
        case Exception::MemoryParityError:
            return "memory parity error";
        case Exception::GatewayPathUnavailable:
            return "gateway has no path";
        case Exception::GatewayTargetFailedToRespond:
            return "device behind the gateway is silent";
    }
    return "unknown exception";
}

}  // namespace

const CRuntimeClass ModbusDriver::runtimeClass{"ModbusDriver"};

ModbusDriver::ModbusDriver(std::shared_ptr<const DeviceProfile> profile)
    : m_profile(std::move(profile)),
      m_period(m_profile->Period()),
      m_description(m_profile->Description()),
      m_transaction(m_profile->FrameForm()),
      m_refused(m_profile->Plan().size(), false)
{
}

bool ModbusDriver::LoadCfg(const XmlNode& xml)
{
    CheckedNode node(xml);
    const ZRBasicString deviceName = node.Id("Name");
    const int unit = node.Integer("Unit", 1, 247, 1);
    const double defaultPeriod = std::chrono::duration<double>(m_profile->Period()).count();
    const double period = node.Number("Period", 0.0, kMaxPeriod, defaultPeriod);
    ZRBasicString description = node.Text("Description", kMaxDescription, m_profile->Description());
    m_loadError = Utf8ToUtf16(node.Error());
    if (!node.Error().empty())
        return false;
    m_unit = static_cast<std::uint8_t>(unit);
    const auto milliseconds = std::chrono::milliseconds(std::llround(period * 1000.0));
    // Only 0 asks for continuous polling, not what is rounded to it.
    m_period = period > 0.0 ? std::max(milliseconds, std::chrono::milliseconds(1)) : milliseconds;
    m_description = std::move(description);
    SetVariables(m_profile->Variables());
    SetName(deviceName);
    return true;
}

const wchar* ModbusDriver::DefaultFilter() const
{
    const ZRBasicString* filter = m_profile->DefaultFilter();
    return filter == nullptr ? nullptr : filter->CStr();
}

void ModbusDriver::BeginCycle()
{
    m_next = 0;
    m_readBack.reset();  // the cycle reads it
}

ZRDeviceTransaction* ModbusDriver::NextTransaction()
{
    if (ZRDeviceTransaction* output = NextOutput())
        return output;
    if (m_readBack)
        return PrepareRead(*std::exchange(m_readBack, std::nullopt));
    if (m_next >= m_profile->Plan().size())
        return nullptr;
    return PrepareRead(m_next++);
}

ZRDeviceTransaction* ModbusDriver::ProbeTransaction()
{
    GiveUpOldOutputs();
    BeginCycle();
    return PrepareRead(m_next++);
}

ZRDeviceTransaction* ModbusDriver::PrepareRead(std::size_t read)
{
    const PlannedRead& planned = m_profile->Plan()[read];
    Request request;
    request.unit = m_unit;
    request.function = planned.function;
    request.first = planned.first;
    request.count = planned.count;
    m_transaction.Prepare(request);  // the profile keeps the rules of the protocol
    m_reading = read;
    m_switching.reset();
    return &m_transaction;
}

ZRDeviceTransaction* ModbusDriver::NextOutput()
{
    GiveUpOldOutputs();
    while (const auto output = m_outputs.Take()) {
        if (!PrepareOutput(*output)) {
            Post(DeviceWarning::OutputRefused, *output);
            continue;
        }
        m_switching = output;
        m_reading.reset();
        return &m_transaction;
    }
    return nullptr;
}

bool ModbusDriver::PrepareOutput(const OutputQueue::Output& output)
{
    const VariableLayout& layout = m_profile->Layout(output.variable);
    std::array<std::uint8_t, 8> data{};
    if (!layout.write || !EncodeNumber(layout, output.value, data, 0))
        return false;
    const std::size_t size = DataBytes(*layout.write, layout.count);
    switch (*layout.write) {
        case Function::WriteSingleCoil:
            return m_transaction.Prepare(WriteSingleCoil(m_unit, layout.writeFirst, output.value != 0.0));
        case Function::WriteSingleRegister:
            return m_transaction.Prepare(WriteSingleRegister(m_unit, layout.writeFirst, RegisterAt(data, 0)));
        case Function::WriteMultipleCoils:
            return m_transaction.Prepare(
                WriteMultipleCoils(m_unit, layout.writeFirst, layout.count, std::span(data).first(size)));
        default:
            return m_transaction.Prepare(
                WriteMultipleRegisters(m_unit, layout.writeFirst, std::span(data).first(size)));
    }
}

void ModbusDriver::TransactionDone(ZRDeviceTransaction&)
{
    if (const auto output = std::exchange(m_switching, std::nullopt))
        OutputDone(*output);
    if (const auto read = std::exchange(m_reading, std::nullopt))
        ReadDone(*read);
}

void ModbusDriver::ReadDone(std::size_t read)
{
    if (m_transaction.outcome != ZRDeviceTransaction::Outcome::Replied)
        return;
    const Reply reply = m_transaction.ReadReply();
    if (reply.exception != Exception::None) {
        Refused(read, reply.exception);
        return;
    }
    m_refused[read] = false;
    const PlannedRead& planned = m_profile->Plan()[read];
    for (const std::size_t variable : planned.items) {
        WriteValue(variable, reply.data, std::size_t{m_profile->Layout(variable).first} - planned.first);
    }
}

void ModbusDriver::WriteValue(std::size_t variable, std::span<const std::uint8_t> data, std::size_t offset)
{
    const VariableLayout& layout = m_profile->Layout(variable);
    LiveValue& value = Store()->At(variable);
    if (layout.type == DataType::Text) {
        value.WriteText(DecodeText(layout, data, offset));
        return;
    }
    // Bits are numbers, 0 and 1, too: publication, logging and displays all read the number of a value.
    const auto number = DecodeNumber(layout, data, offset);
    if (number) {
        value.WriteNumber(*number);
    } else {
        value.Invalidate();
    }
}

void ModbusDriver::Refused(std::size_t read, Exception exception)
{
    const PlannedRead& planned = m_profile->Plan()[read];
    for (const std::size_t variable : planned.items)
        Store()->At(variable).Invalidate();
    if (m_refused[read])
        return;
    m_refused[read] = true;
    const std::string info =
        fmt::format("function {}, {} {} to {}: exception {}, {}", static_cast<int>(planned.function),
                    IsBitFunction(planned.function) ? "bits" : "registers", planned.first,
                    planned.first + planned.count - 1, static_cast<int>(exception), ExceptionText(exception));
    PostNotice(DeviceWarning::DeviceRefusesRequest, name, Utf8ToUtf16(info), Utf8ToUtf16("(" + info + ")"));
}

bool ModbusDriver::SetOutput(VariableHandle handle, double value)
{
    std::size_t variable = 0;
    if (!AcceptsOutput(handle, value) || !VariableIndex(handle, variable))
        return false;
    std::array<std::uint8_t, 8> room{};
    if (!EncodeNumber(m_profile->Layout(variable), value, room, 0))
        return false;
    m_outputs.Put({variable, value, CurrentClock().Steady()});
    AskForService();
    return true;
}

void ModbusDriver::OutputDone(const OutputQueue::Output& output)
{
    if (m_transaction.outcome != ZRDeviceTransaction::Outcome::Replied) {
        Post(DeviceWarning::OutputTimedOut, output);
        return;
    }
    if (m_transaction.ReadReply().exception != Exception::None) {
        Post(DeviceWarning::OutputRefused, output);
        return;
    }
    Post(DeviceWarning::OutputSwitched, output);
    m_readBack = m_profile->ReadOf(output.variable);
    AskForService();
}

void ModbusDriver::GiveUpOldOutputs()
{
    for (const auto& output : m_outputs.TakeOlderThan(CurrentClock().Steady() - kOutputLife)) {
        Post(DeviceWarning::OutputTimedOut, output);
    }
}

std::string ModbusDriver::OutputText(const OutputQueue::Output& output) const
{
    const VariableDescription& variable = (*m_profile->Variables())[output.variable];
    const std::string variableName = Utf16ToUtf8(variable.name);
    for (std::size_t at = 0; at < variable.values.size(); ++at) {
        if (output.value == variable.values[at]) {
            return fmt::format("{} = {}", variableName, Utf16ToUtf8(variable.valueTexts[at]));
        }
    }
    return fmt::format("{} = {:.{}f}", variableName, output.value, variable.decimals);
}

void ModbusDriver::Post(DeviceWarning type, const OutputQueue::Output& output) const
{
    const ZRBasicString text = Utf8ToUtf16(OutputText(output));
    PostNotice(type, name, text, text);
}

}  // namespace zr::modbus
