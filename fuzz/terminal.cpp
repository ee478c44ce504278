// A text for the terminal keeps to its columns and moves no cursor.

#include "Fuzz.h"
#include "app/TerminalText.h"

#include <QList>

#include <algorithm>

using namespace tallyglass;
using fuzz::require;

namespace {

bool isHarmless(uint character)
{
    const auto category = QChar::category(character);
    return category != QChar::Other_Control && category != QChar::Other_Format
        && category != QChar::Separator_Line && category != QChar::Separator_Paragraph;
}

} // namespace

/// The first byte is the width.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const int width = data[0];
    const QString text =
        printable(QString::fromUtf8(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1));
    require(std::ranges::all_of(text.toUcs4(), isHarmless), "nothing controls the terminal");
    const QString cut = elided(text, width);
    require(displayWidth(cut) <= width, "a text is cut to its width");
    require(displayWidth(paddedLeft(cut, width)) == width, "a text is filled from the left");
    require(displayWidth(paddedRight(cut, width)) == width, "a text is filled from the right");
    return 0;
}
