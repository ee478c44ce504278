#include "collect/NameTable.h"

namespace tallyglass {

QString NameTable::shared(std::string_view utf8)
{
    if (const auto known = m_names.find(utf8); known != m_names.end())
        return known->second;

    // A log may name something new in every record; the table must not grow with it.
    constexpr std::size_t manyNames = 1'000;
    if (m_names.size() >= manyNames)
        m_names.clear();
    const auto name = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    return m_names.emplace(utf8, name).first->second;
}

} // namespace tallyglass
