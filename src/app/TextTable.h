#pragma once

#include <QStringList>

#include <cstdint>
#include <vector>

namespace tallyglass {

/// Rows whose columns stand below each other, for terminals and pipes.
class TextTable
{
public:
    enum class Column : std::uint8_t {
        Text, ///< at the left, cut at its end
        Figure, ///< at the right
        Path, ///< at the left, cut at its beginning, since its end tells most
    };

    explicit TextTable(std::vector<Column> columns);

    void row(QStringList cells);
    /// A line of its own, to which no column has to make room.
    void line(const QString &text);

    /// \a width is that of the terminal, to which lines are cut;
    QString text(int width) const;

private:
    std::vector<Column> m_columns;
    std::vector<QStringList> m_rows; ///< one of a single cell is a line
};

/// Every digit, in groups of three: "1,234,567".
QString fullCount(std::int64_t count);

} // namespace tallyglass
