#include "devices/simulation/SimulatedDevice.h"

#include "devices/simulation/RegisterEncoder.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zr {
namespace {

using modbus::DataType;
using modbus::Exception;
using modbus::Function;

constexpr std::size_t kLongestVariable = 125;  // registers

// FNV-1a (Fowler, Noll, Vo): the same number for the same name on every system.
std::uint64_t HashOf(std::string_view text)
{
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    }
    return hash;
}

std::string HexText(std::uint64_t number, std::size_t digits)
{
    std::string text(digits, '0');
    for (std::size_t i = digits; i-- > 0; number >>= 4u) {
        text[i] = "0123456789ABCDEF"[number & 0xFu];
    }
    return text;
}

std::string RawText(const modbus::VariableLayout& layout, const std::vector<std::uint16_t>& words)
{
    if (layout.type == DataType::Bit) {
        return (unsigned{words[0]} >> layout.bit & 1u) != 0 ? "1" : "0";
    }
    std::string text;
    for (const std::uint16_t word : words) {
        text += HexText(word, 4);
    }
    return text;
}

}  // namespace

SimulatedDevice::SimulatedDevice(PlantDevice setup, std::shared_ptr<const modbus::DeviceProfile> profile,
                                 const HouseholdSeries& series, std::uint64_t seed)
    : m_setup(std::move(setup)),
      m_profile(std::move(profile)),
      m_model(series, m_setup.meter),
      m_faults(seed ^ HashOf(m_setup.name)),
      m_serialNumber("ZR" + HexText(HashOf(m_setup.name), 8))
{
    m_sources.resize(m_profile->Variables()->Size());
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        AddVariable(i);
    }
}

void SimulatedDevice::AddVariable(std::size_t index)
{
    const modbus::VariableLayout& layout = m_profile->Layout(index);
    Source& source = m_sources[index];
    source.name = Utf16ToUtf8((*m_profile->Variables())[index].name);
    Space& space = m_spaces[static_cast<std::size_t>(layout.function)];
    space.variables.emplace(layout.first, index);
    space.lowest = std::min<std::uint32_t>(space.lowest, layout.first);
    space.end = std::max<std::uint32_t>(space.end, std::uint32_t{layout.first} + layout.count);
    if (layout.write) {
        source.isOutput = true;
        source.written.resize(layout.count);
        for (std::size_t word = 0; word < layout.count; ++word) {
            const auto address = static_cast<std::uint16_t>(layout.writeFirst + word);
            m_outputs.emplace(WriteAddress(modbus::IsBitFunction(*layout.write), address), WritePlace(index, word));
        }
        return;
    }
    source.quantity = FindQuantity(source.name, layout.type == DataType::Bit);
    if (!source.quantity && layout.type != DataType::Text) {
        m_unknown.push_back(source.name);
    }
}

DeviceReply SimulatedDevice::Answer(const modbus::Request& request, double position)
{
    DeviceReply reply;
    reply.exception = modbus::Check(request);
    if (reply.exception != Exception::None) {
        return reply;
    }
    if (modbus::IsReadFunction(request.function)) {
        Read(request, position, reply);
    } else {
        Write(request, reply);
    }
    return reply;
}

std::vector<std::uint16_t> SimulatedDevice::Content(std::size_t variable, Snapshot& snapshot) const
{
    const modbus::VariableLayout& layout = m_profile->Layout(variable);
    const Source& source = m_sources[variable];
    if (source.isOutput) {
        return source.written;
    }
    if (layout.type == DataType::Text) {
        return EncodeTextRegisters(layout, m_serialNumber);
    }
    const double real = source.quantity ? source.quantity->Of(snapshot) : 0.0;
    return EncodeRegisters(layout, (*m_profile->Variables())[variable].valueExponent, real);
}

ServedValue SimulatedDevice::Served(std::size_t variable, const std::vector<std::uint16_t>& words) const
{
    const modbus::VariableLayout& layout = m_profile->Layout(variable);
    return {m_setup.name, m_sources[variable].name, StoredText(layout, words), RawText(layout, words)};
}

void SimulatedDevice::Read(const modbus::Request& request, double position, DeviceReply& reply) const
{
    const Space& space = m_spaces[static_cast<std::size_t>(request.function)];
    const std::uint32_t first = request.first;
    const std::uint32_t end = first + request.count;
    if (first < space.lowest || end > space.end) {
        reply.exception = Exception::IllegalDataAddress;
        return;
    }
    reply.data.assign(modbus::DataBytes(request.function, request.count), 0);
    Snapshot snapshot(m_model, position);
    const auto from = static_cast<std::uint16_t>(first > kLongestVariable ? first - kLongestVariable : 0);
    for (auto it = space.variables.lower_bound(from); it != space.variables.end() && it->first < end; ++it) {
        Place(request, it->second, snapshot, reply);
    }
}

void SimulatedDevice::Place(const modbus::Request& request, std::size_t variable, Snapshot& snapshot,
                            DeviceReply& reply) const
{
    const modbus::VariableLayout& layout = m_profile->Layout(variable);
    const std::size_t end = std::size_t{request.first} + request.count;
    if (std::size_t{layout.first} + layout.count <= request.first) {
        return;
    }
    const std::vector<std::uint16_t> words = Content(variable, snapshot);
    bool isWhole = true;
    for (std::size_t word = 0; word < words.size(); ++word) {
        const std::size_t address = layout.first + word;
        if (address < request.first || address >= end) {
            isWhole = false;
            continue;
        }
        const std::size_t place = address - request.first;
        if (modbus::IsBitFunction(request.function)) {
            modbus::SetBit(reply.data, place, words[word] != 0);
        } else {
            // Several bits share a register.
            const unsigned shared = modbus::RegisterAt(reply.data, place) | static_cast<unsigned>(words[word]);
            modbus::SetRegister(reply.data, place, static_cast<std::uint16_t>(shared));
        }
    }
    if (isWhole) {
        reply.values.push_back(Served(variable, words));
    }
}

void SimulatedDevice::Write(const modbus::Request& request, DeviceReply& reply)
{
    const bool isCoil = modbus::IsBitFunction(request.function);
    for (std::size_t i = 0; i < request.count; ++i) {
        if (!m_outputs.contains({isCoil, static_cast<std::uint16_t>(request.first + i)})) {
            reply.exception = Exception::IllegalDataAddress;
            return;
        }
    }
    const bool isSingle =
        request.function == Function::WriteSingleCoil || request.function == Function::WriteSingleRegister;
    std::vector<std::size_t> touched;
    for (std::size_t i = 0; i < request.count; ++i) {
        const auto [variable, word] = m_outputs.at({isCoil, static_cast<std::uint16_t>(request.first + i)});
        std::uint16_t value = request.value;
        if (isCoil) {
            value = (isSingle ? request.value == modbus::kCoilOn : modbus::BitAt(request.data, i)) ? 1 : 0;
        } else if (!isSingle) {
            value = modbus::RegisterAt(request.data, i);
        }
        m_sources[variable].written[word] = value;
        if (touched.empty() || touched.back() != variable) {
            touched.push_back(variable);
        }
    }
    for (const std::size_t variable : touched) {
        reply.values.push_back(Served(variable, m_sources[variable].written));
    }
}

}  // namespace zr
