#include "siblings/driversupport/VariableStore.h"

#include <array>
#include <bit>
#include <mutex>
#include <utility>

namespace zr {

namespace {

// Which of them guards a text is settled by the address of its value.
std::mutex& TextGuard(const LiveValue* value)
{
    static std::array<std::mutex, 16> guards;
    return guards[(reinterpret_cast<std::uintptr_t>(value) / sizeof(LiveValue)) % guards.size()];
}

}  // namespace

VariableTable::VariableTable(std::vector<VariableDescription> variables) : m_variables(std::move(variables))
{
    m_index.reserve(m_variables.size());
    for (std::size_t i = 0; i < m_variables.size(); ++i) {
        m_index.emplace(m_variables[i].name, i);
    }
}

std::optional<std::size_t> VariableTable::Find(const ZRBasicString& name) const
{
    const auto found = m_index.find(name);
    if (found == m_index.end()) {
        return std::nullopt;
    }
    return found->second;
}

LiveValue::~LiveValue()
{
    delete m_text;
}

// Boehm's sequence lock without fences: every store between the two of the sequence is a release and every load
// between those of a reader an acquire, so that a reader that sees a new payload also sees the odd sequence
// (H.-J. Boehm, "Can Seqlocks Get Along With Programming Language Memory Models?", 2012).
void LiveValue::Write(std::int32_t type, std::uint64_t payload)
{
    const std::uint32_t sequence = m_sequence.load(std::memory_order_relaxed);
    m_sequence.store(sequence + 1, std::memory_order_relaxed);
    m_payload.store(payload, std::memory_order_release);
    m_typeAndValid.store(static_cast<std::uint32_t>(type) | kValidBit, std::memory_order_release);
    m_sequence.store(sequence + 2, std::memory_order_release);
}

void LiveValue::WriteBoolean(bool value)
{
    Write(tagSVariableValue::kBoolean, value ? 1 : 0);
}

void LiveValue::WriteNumber(double value)
{
    Write(tagSVariableValue::kNumber, std::bit_cast<std::uint64_t>(value));
}

void LiveValue::WriteText(const ZRBasicString& value)
{
    {
        const std::lock_guard lock(TextGuard(this));
        if (m_text == nullptr) {
            m_text = new ZRBasicString(value);
        } else {
            *m_text = value;
        }
    }
    Write(tagSVariableValue::kText, 0);
}

void LiveValue::WriteWords(std::int32_t first, std::int32_t second)
{
    Write(tagSVariableValue::kWords,
          std::uint64_t{static_cast<std::uint32_t>(first)} << 32 | static_cast<std::uint32_t>(second));
}

void LiveValue::Invalidate()
{
    m_typeAndValid.store(m_typeAndValid.load(std::memory_order_relaxed) & ~kValidBit, std::memory_order_release);
}

void LiveValue::Read(tagSVariableValue& out) const
{
    std::uint32_t before = 0;
    std::uint32_t typeAndValid = 0;
    std::uint64_t payload = 0;
    do {
        before = m_sequence.load(std::memory_order_acquire);
        payload = m_payload.load(std::memory_order_acquire);
        typeAndValid = m_typeAndValid.load(std::memory_order_acquire);
    } while ((before & 1) != 0 || before != m_sequence.load(std::memory_order_relaxed));

    out.type = static_cast<std::int32_t>(typeAndValid & ~kValidBit);
    switch (out.type) {
        case tagSVariableValue::kBoolean:
            out.boolean = static_cast<std::uint8_t>(payload);
            break;
        case tagSVariableValue::kNumber:
            out.number = std::bit_cast<double>(payload);
            break;
        case tagSVariableValue::kText: {
            const std::lock_guard lock(TextGuard(this));
            out.text = *m_text;
            break;
        }
        case tagSVariableValue::kWords:
            out.first = static_cast<std::int32_t>(payload >> 32);
            out.second = static_cast<std::int32_t>(payload & 0xFFFFFFFFu);
            break;
        default:
            break;
    }
}

VariableStore::VariableStore(std::shared_ptr<const VariableTable> table)
    : m_table(std::move(table)), m_values(std::make_unique<LiveValue[]>(m_table->Size()))
{
}

void VariableStore::InvalidateAll()
{
    for (std::size_t i = 0; i < m_table->Size(); ++i) {
        m_values[i].Invalidate();
    }
}

}  // namespace zr
