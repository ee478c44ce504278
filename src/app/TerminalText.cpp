#include "app/TerminalText.h"

#include <QList>

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

QString blanks(int count)
{
    return QStringLiteral(" ").repeated(std::max(count, 0));
}

} // namespace

int displayWidth(QStringView text)
{
    int width = 0;
    for (const uint character : text.toUcs4())
        width += characterWidth(character);
    return width;
}

QString printable(const QString &text)
{
    QString result = text;
    for (QChar &character : result) {
        if (character.category() == QChar::Other_Control
            || character.category() == QChar::Other_Format)
            character = QChar::ReplacementCharacter;
    }
    return result;
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
    QList<uint> kept;
    int used = 1; // the "…"
    for (const uint character : text.toUcs4()) {
        used += characterWidth(character);
        if (used > width)
            break;
        kept.append(character);
    }
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(kept.constData()), kept.size())
        + u'…';
}

} // namespace tallyglass
