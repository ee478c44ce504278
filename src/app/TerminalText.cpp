#include "app/TerminalText.h"

#include <algorithm>
#include <array>

namespace tallyglass {

namespace {

struct Range
{
    char32_t first;
    char32_t last;
};

/// Blocks whose characters are "W" or "F" in Unicode's EastAsianWidth.txt, and the emoji.
constexpr std::array wideBlocks{
    Range{0x1100, 0x115f},   Range{0x2e80, 0x303e},   Range{0x3041, 0x33ff},
    Range{0x3400, 0x4dbf},   Range{0x4e00, 0x9fff},   Range{0xa000, 0xa4cf},
    Range{0xa960, 0xa97f},   Range{0xac00, 0xd7a3},   Range{0xf900, 0xfaff},
    Range{0xfe30, 0xfe6f},   Range{0xff01, 0xff60},   Range{0xffe0, 0xffe6},
    Range{0x1f300, 0x1f64f}, Range{0x1f900, 0x1f9ff}, Range{0x20000, 0x3fffd},
};

int characterWidth(char32_t character)
{
    const auto category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    const bool isWide = std::ranges::any_of(wideBlocks, [&](const Range &block) {
        return character >= block.first && character <= block.last;
    });
    return isWide ? 2 : 1;
}

bool isPrintable(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format: // direction marks, tags
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

/// Calls \a visit with each character and its one or two units in the text.
template<typename Visit>
void forEachCharacter(QStringView text, Visit visit)
{
    while (!text.isEmpty()) {
        const bool isPair =
            text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate();
        visit(isPair ? QChar::surrogateToUcs4(text[0], text[1]) : text[0].unicode(),
              text.first(isPair ? 2 : 1));
        text = text.sliced(isPair ? 2 : 1);
    }
}

QString blanks(int count)
{
    return QStringLiteral(" ").repeated(std::max(count, 0));
}

} // namespace

int displayWidth(QStringView text)
{
    int width = 0;
    forEachCharacter(text,
                     [&](char32_t character, QStringView) { width += characterWidth(character); });
    return width;
}

QString printable(QStringView text)
{
    QString result;
    forEachCharacter(text, [&](char32_t character, QStringView units) {
        if (isPrintable(character))
            result += units;
        else
            result += QChar::ReplacementCharacter;
    });
    return result;
}

QByteArray printableJson(const QByteArray &json)
{
    QString result;
    result.reserve(json.size());
    forEachCharacter(QString::fromUtf8(json), [&](char32_t character, QStringView units) {
        // Below, there are only the line feeds between members: JSON escapes all others itself.
        if (character < 0x7f || isPrintable(character)) {
            result += units;
            return;
        }
        for (const QChar unit : units)
            result += QStringLiteral("\\u%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
    });
    return result.toUtf8();
}

QString paddedRight(const QString &text, int width)
{
    return text + blanks(width - displayWidth(text));
}

QString paddedLeft(const QString &text, int width)
{
    return blanks(width - displayWidth(text)) + text;
}

QString elided(const QString &text, int width)
{
    if (displayWidth(text) <= width)
        return text;
    if (width < 1)
        return {};
    QString kept;
    int used = 1; // the "…"
    forEachCharacter(text, [&](char32_t character, QStringView units) {
        used += characterWidth(character);
        if (used <= width)
            kept += units;
    });
    return kept + u'…';
}

QString elidedAtStart(const QString &text, int width)
{
    if (displayWidth(text) <= width)
        return text;
    qsizetype from = 0;
    while (from < text.size() && displayWidth(QStringView(text).mid(from)) > width - 1)
        from += text[from].isHighSurrogate() ? 2 : 1;
    return width < 1 ? QString() : u'…' + text.mid(from);
}

} // namespace tallyglass
