#include "app/TextTable.h"

#include "app/TerminalText.h"

#include <QLocale>

#include <algorithm>

namespace tallyglass {

TextTable::TextTable(std::vector<Column> columns)
    : m_columns(std::move(columns))
{
}

void TextTable::row(QStringList cells)
{
    m_rows.push_back(std::move(cells));
}

void TextTable::line(const QString &text)
{
    m_rows.push_back({text});
}

QString TextTable::text(int width) const
{
    std::vector<int> widths(m_columns.size());
    for (const QStringList &cells : m_rows) {
        for (qsizetype i = 0; i < cells.size() && cells.size() > 1; ++i) {
            int &widest = widths[static_cast<std::size_t>(i)];
            widest = std::max(widest, displayWidth(cells[i]));
        }
    }

    QString text;
    for (const QStringList &cells : m_rows) {
        QString line;
        for (qsizetype i = 0; i < cells.size(); ++i) {
            const Column column = m_columns[static_cast<std::size_t>(i)];
            const int columnWidth = cells.size() > 1 ? widths[static_cast<std::size_t>(i)] : 0;
            if (i > 0)
                line += QStringLiteral("  ");
            QString cell = cells[i];
            if (column == Column::Path && i + 1 == cells.size())
                cell = elidedAtStart(cell, width - displayWidth(line));
            line += column == Column::Figure && cells.size() > 1 ? paddedLeft(cell, columnWidth)
                                                                 : paddedRight(cell, columnWidth);
        }
        while (line.endsWith(u' '))
            line.chop(1);
        text += elided(line, width) + u'\n';
    }
    return text;
}

QString fullCount(std::int64_t count)
{
    return QLocale(QLocale::English).toString(qint64{count});
}

} // namespace tallyglass
