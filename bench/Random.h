#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace tallyglass::bench {

/// The parts one after the other. Other than with "+", they are also evaluated in this order, which
/// must not depend on the compiler where they are drawn at random.
inline std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

/// Random figures that are the same for a seed wherever they are drawn: the engine is fixed by the
/// language, the library's distributions are not.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : m_engine(seed)
    {
    }

    /// A whole number from \a least to \a most, both included.
    std::int64_t between(std::int64_t least, std::int64_t most)
    {
        const auto span = static_cast<std::uint64_t>(most - least) + 1;
        return least + static_cast<std::int64_t>(m_engine() % span);
    }

    /// From 0 to just below 1.
    double fraction() { return static_cast<double>(m_engine() >> 11) * 0x1p-53; }

    /// As many small as large in proportion: sizes of files and of tool outputs are spread so.
    /// Above 1, \a lean makes the small ones more frequent.
    std::int64_t spread(std::int64_t least, std::int64_t most, double lean = 1)
    {
        const double ratio = static_cast<double>(most) / static_cast<double>(least);
        return static_cast<std::int64_t>(static_cast<double>(least)
                                         * std::pow(ratio, std::pow(fraction(), lean)));
    }

    bool oneIn(std::int64_t count) { return between(1, count) == 1; }

    template<typename Choices>
    const auto &pick(const Choices &choices)
    {
        return choices[static_cast<std::size_t>(
            between(0, static_cast<std::int64_t>(std::size(choices)) - 1))];
    }

    /// \a count characters out of \a alphabet.
    std::string characters(std::size_t count, std::string_view alphabet)
    {
        std::string text(count, ' ');
        for (char &character : text)
            character = pick(alphabet);
        return text;
    }

    std::string hexadecimal(std::size_t count) { return characters(count, "0123456789abcdef"); }

    std::string uuid()
    {
        return joined({hexadecimal(8), "-", hexadecimal(4), "-4", hexadecimal(3), "-a",
                       hexadecimal(3), "-", hexadecimal(12)});
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace tallyglass::bench
