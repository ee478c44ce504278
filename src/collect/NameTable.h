#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <unordered_map>

namespace tallyglass {

/// Turns names that come again and again into shared strings: a few models and plans name every
/// event.
class NameTable
{
public:
    QString shared(std::string_view utf8);

private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const
        {
            return std::hash<std::string_view>{}(text);
        }
    };

    std::unordered_map<std::string, QString, Hash, std::equal_to<>> m_names;
};

} // namespace tallyglass
