#pragma once

#include "collect/FieldAliases.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace tallyglass {

/// The members of one JSON object whose names the readers know, found in one pass over it. Of
/// repeated names the last holds. Lives no longer than the parsed text.
class ObjectFields
{
public:
    explicit ObjectFields(simdjson::dom::object object);

    bool isEmpty() const { return m_count == 0; }

    /// The member's value, null when the object has none.
    const simdjson::dom::element *find(FieldKey key) const
    {
        const std::uint8_t slot = m_slots[key.index()];
        return slot == absent ? nullptr : &m_values.filled[slot];
    }

private:
    static constexpr std::uint8_t absent = 0xff;
    using Slots = std::array<std::uint8_t, fieldNames.size()>;
    static constexpr Slots noSlots = [] {
        Slots slots{};
        slots.fill(absent);
        return slots;
    }();

    Slots m_slots; ///< by the place of the name in the table: where m_values has its value
    std::uint8_t m_count = 0;
    /// Not initialised: clearing room for all names costs more than filling in the few of an
    /// object.
    union Values {
        Values() { } // NOLINT(modernize-use-equals-default): it would be deleted
        std::array<simdjson::dom::element, fieldNames.size()> filled;
    } m_values;
};

/// Calls \a visit(name, value) for each member that holds an object or an array, in their order. Of
/// members with the same name only the last counts, whatever it holds.
template<typename Visit>
void forEachContainer(simdjson::dom::object object, Visit visit)
{
    // Comparing pairs is fastest for the few members that objects have, but would take seconds for
    // the tens of thousands that one can have.
    constexpr std::size_t manyMembers = 32;
    std::unordered_map<std::string_view, simdjson::dom::object::iterator> lastOfName;
    const bool hasMany = object.size() > manyMembers;
    if (hasMany) {
        for (auto it = object.begin(); it != object.end(); ++it)
            lastOfName.insert_or_assign(it.key(), it);
    }

    for (auto it = object.begin(); it != object.end(); ++it) {
        const simdjson::dom::element value = it.value();
        if (!value.is_object() && !value.is_array())
            continue;
        const std::string_view name = it.key();
        bool isRepeated = false;
        if (hasMany) {
            isRepeated = lastOfName.at(name) != it;
        } else {
            for (auto later = std::next(it); later != object.end() && !isRepeated; ++later)
                isRepeated = later.key() == name;
        }
        if (!isRepeated)
            visit(name, value);
    }
}

} // namespace tallyglass
