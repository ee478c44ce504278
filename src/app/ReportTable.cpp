#include "app/ReportTable.h"

#include "app/TerminalText.h"
#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "model/Pace.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tallyglass {

namespace {

enum Column : std::uint8_t {
    Name,
    Used,
    Tokens,
    Limit,
    Reset,
    AtReset,
    Events,
    Models,
    ColumnCount
};

using Cells = std::array<QString, ColumnCount>;

/// Figures stand at the right of their column, texts at the left.
bool isFigure(std::size_t column)
{
    return column == Used || column == Tokens || column == Events;
}

const auto nothing = QStringLiteral("--");
const auto gap = QStringLiteral("  ");

QString limitText(const std::optional<RateLimitUsage> &limit)
{
    if (!limit)
        return nothing;
    const auto plan = limit->planDisplayName();
    return plan ? limit->windowLabel() + u' ' + printable(*plan) : limit->windowLabel();
}

QString topModels(const std::vector<ModelUsageSummary> &models)
{
    if (models.empty())
        return displayText("metric.noModelInfo");
    constexpr std::size_t shown = 3;
    QStringList texts;
    for (std::size_t i = 0; i < std::min(shown, models.size()); ++i)
        texts +=
            printable(models[i].model) + u' ' + formatTokenCount(models[i].tokens.totalTokens());
    if (models.size() > shown)
        texts += QStringLiteral("+%1").arg(models.size() - shown);
    return texts.join(QStringLiteral(", "));
}

Cells cells(const ProviderUsageSummary &provider, Instant now)
{
    const auto &limit = provider.rateLimit;
    Cells cells;
    cells[Name] = QStringLiteral("  ") + displayName(provider.provider);
    cells[Used] = provider.percentText();
    cells[Tokens] = formatTokenCount(provider.tokens.totalTokens());
    cells[Limit] = limitText(limit);
    cells[Reset] =
        limit && limit->resetDate ? formatResetCountdown(*limit->resetDate, now) : nothing;
    const auto pace = limit ? paceOf(*limit, now) : std::nullopt;
    cells[AtReset] = pace ? paceText(*pace, now) : nothing;
    cells[Events] = QString::number(provider.eventCount);
    cells[Models] = provider.hasActivity() ? topModels(provider.models) : QString();
    return cells;
}

Cells headings()
{
    Cells cells;
    cells[Used] = displayText("metric.usage");
    cells[Tokens] = displayText("summary.total");
    cells[Limit] = displayText("limit.window.unknown");
    cells[Reset] = displayText("metric.resetRemaining");
    cells[AtReset] = displayText("pace.title");
    cells[Events] = displayText("metric.events");
    cells[Models] = displayText("metric.topModels");
    return cells;
}

// Codes of ECMA-48, "select graphic rendition".
enum class Look : std::uint8_t {
    Plain = 0,
    Bold = 1,
    Faint = 2,
    Red = 31,
    Green = 32,
    Yellow = 33
};

Look lookOf(const ProviderUsageSummary &provider)
{
    if (!provider.hasActivity())
        return Look::Faint;
    if (provider.percent() >= 0.8)
        return Look::Red;
    return provider.percent() >= 0.5 ? Look::Yellow : Look::Green;
}

class TableWriter
{
public:
    explicit TableWriter(const TableStyle &style)
        : m_style(style)
    {
    }

    void measure(const Cells &cells)
    {
        for (std::size_t column = 0; column < ColumnCount; ++column)
            m_widths[column] = std::max(m_widths[column], displayWidth(cells[column]));
    }

    /// Makes the columns narrower, or leaves them out, from the least telling one on, until a line
    /// fits.
    void fit()
    {
        constexpr int leastText = 8; // Less of a text tells nothing.
        for (const Column column : {Models, Events, AtReset, Limit, Name}) {
            const int excess = lineWidth() - m_style.width;
            if (excess <= 0)
                return;
            const int left = m_widths[column] - excess;
            m_widths[column] = left < leastText && column != Name ? 0 : std::max(left, leastText);
        }
    }

    void title(const QString &text) { m_text += looking(text, Look::Bold) + u'\n'; }

    void row(const Cells &cells, Look figureLook, Look lineLook)
    {
        QString line;
        int left = m_style.width;
        for (std::size_t column = 0; column < ColumnCount && left > 0; ++column) {
            const int width = m_widths[column];
            if (width == 0)
                continue;
            QString cell = elided(cells[column], width);
            if (isFigure(column))
                cell = paddedLeft(cell, width);
            else if (!isLast(column)) // which has no blanks behind it
                cell = paddedRight(cell, width);
            if (column > 0 && !cell.isEmpty())
                cell.prepend(gap);
            const QString shown = elided(cell, left);
            // A wide character that was cut off may leave a column free; nothing goes there.
            left = shown == cell ? left - displayWidth(cell) : 0;
            line += looking(shown, column == Used ? figureLook : lineLook);
        }
        m_text += line + u'\n';
    }

    QString text() const { return m_text; }

private:
    int lineWidth() const
    {
        int width = m_widths[Name];
        for (std::size_t column = Used; column < ColumnCount; ++column)
            width += m_widths[column] > 0 ? m_widths[column] + displayWidth(gap) : 0;
        return width;
    }

    bool isLast(std::size_t column) const
    {
        return std::all_of(m_widths.begin() + column + 1, m_widths.end(),
                           [](int width) { return width == 0; });
    }

    QString looking(const QString &text, Look look) const
    {
        if (!m_style.hasColours || look == Look::Plain || text.isEmpty())
            return text;
        return QStringLiteral("\x1b[%1m%2\x1b[0m").arg(static_cast<int>(look)).arg(text);
    }

    TableStyle m_style;
    std::array<int, ColumnCount> m_widths{};
    QString m_text;
};

} // namespace

QString reportTable(std::span<const WindowUsageSummary> windows, Instant now,
                    const TableStyle &style)
{
    TableWriter table(style);
    table.measure(headings());
    for (const WindowUsageSummary &window : windows) {
        for (const ProviderUsageSummary &provider : window.providers)
            table.measure(cells(provider, now));
    }
    table.fit();

    table.row(headings(), Look::Faint, Look::Faint);
    for (const WindowUsageSummary &window : windows) {
        table.title(shortLabel(window.window));
        for (const ProviderUsageSummary &provider : window.providers)
            table.row(cells(provider, now), lookOf(provider),
                      provider.hasActivity() ? Look::Plain : Look::Faint);
    }
    return table.text();
}

} // namespace tallyglass
