#include "collect/ObjectFields.h"

namespace tallyglass {

ObjectFields::ObjectFields(simdjson::dom::object object)
    : m_slots(noSlots)
{
    for (const auto &member : object) {
        const auto index = FieldKey::find(member.key);
        if (!index)
            continue;
        std::uint8_t &slot = m_slots[*index];
        if (slot == absent)
            slot = m_count++;
        m_values.filled[slot] = member.value;
    }
}

} // namespace tallyglass
