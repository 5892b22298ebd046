// Objects behind numbers that are not soon used again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

namespace zr::ddeml {

// Gives each object a number of 32 bits, never 0: a place in the low 20 bits, above it how often the place was used.
// A number of a removed object is unknown, until its place was used 4096 times more. Not thread-safe.
template <typename T>
class SlotTable {
public:
    static constexpr std::uint32_t kIndexBits = 20;
    static constexpr std::uint32_t kCapacity = (1U << kIndexBits) - 1;

    // Calls fill on the object of a free place, which is as Remove() left it. 0 when the table is full.
    template <typename Fill>
    std::uint32_t Add(Fill&& fill)
    {
        if (m_free.empty() || (m_slots.size() < kReuseAfter && m_slots.size() < kCapacity)) {
            if (m_slots.size() >= kCapacity) {
                return 0;
            }
            m_slots.emplace_back();
            m_free.push_front(static_cast<std::uint32_t>(m_slots.size()));
        }
        const std::uint32_t index = m_free.front();
        m_free.pop_front();
        Slot& slot = m_slots[index - 1];
        slot.used = true;
        ++m_count;
        fill(slot.object);
        return (slot.generation << kIndexBits) | index;
    }

    T* Find(std::uint32_t number)
    {
        const std::uint32_t index = number & kCapacity;
        if (index == 0 || index > m_slots.size()) {
            return nullptr;
        }
        Slot& slot = m_slots[index - 1];
        return slot.used && slot.generation == number >> kIndexBits ? &slot.object : nullptr;
    }

    // The object itself stays for its next use; the caller empties it.
    void Remove(std::uint32_t number)
    {
        const std::uint32_t index = number & kCapacity;
        Slot& slot = m_slots[index - 1];
        slot.used = false;
        slot.generation = (slot.generation + 1) & kGenerationMask;
        --m_count;
        m_free.push_back(index);
    }

    [[nodiscard]] std::size_t Count() const { return m_count; }

    template <typename Visit>
    void ForEach(Visit&& visit)
    {
        for (std::size_t i = 0; i < m_slots.size(); ++i) {
            if (m_slots[i].used) {
                visit((m_slots[i].generation << kIndexBits) | static_cast<std::uint32_t>(i + 1), m_slots[i].object);
            }
        }
    }

private:
    static constexpr std::uint32_t kGenerationMask = (1U << (32 - kIndexBits)) - 1;
    // So many places are opened before the first one is used again.
    static constexpr std::size_t kReuseAfter = 64;

    struct Slot {
        T object{};
        std::uint32_t generation = 0;
        bool used = false;
    };

    std::deque<Slot> m_slots;
    std::deque<std::uint32_t> m_free;
    std::size_t m_count = 0;
};

}  // namespace zr::ddeml
