#include "update/ReleaseNotesText.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace tallyglass {

namespace {

struct Entity
{
    QLatin1String name;
    QChar character;
};

constexpr std::array entities{
    Entity{QLatin1String("&amp;"), u'&'},  Entity{QLatin1String("&lt;"), u'<'},
    Entity{QLatin1String("&gt;"), u'>'},   Entity{QLatin1String("&quot;"), u'"'},
    Entity{QLatin1String("&#39;"), u'\''}, Entity{QLatin1String("&apos;"), u'\''},
    Entity{QLatin1String("&nbsp;"), u' '},
};

/// In one pass, so that what a replacement writes is not taken for an entity again: "&amp;lt;"
/// stands for the text "&lt;".
QString withEntitiesReplaced(QStringView text)
{
    QString result;
    for (qsizetype ampersand = text.indexOf(u'&'); ampersand >= 0; ampersand = text.indexOf(u'&')) {
        result += text.first(ampersand);
        text = text.sliced(ampersand);
        const auto *const entity = std::ranges::find_if(
            entities, [text](const Entity &candidate) { return text.startsWith(candidate.name); });
        const bool isKnown = entity != entities.end();
        result += isKnown ? entity->character : u'&';
        text = text.sliced(isKnown ? entity->name.size() : 1);
    }
    result += text;
    return result;
}

bool isBlank(QChar character)
{
    return character == u' ' || character == u'\t';
}

QStringView withoutBlankEnds(QStringView line)
{
    while (!line.isEmpty() && isBlank(line.front()))
        line = line.sliced(1);
    while (!line.isEmpty() && isBlank(line.back()))
        line.chop(1);
    return line;
}

QString withLinesTidied(QString text)
{
    text.replace(u'\r', u'\n');
    QStringList lines;
    for (const QStringView whole : QStringView(text).split(u'\n')) {
        const QStringView line = withoutBlankEnds(whole);
        if (!line.isEmpty())
            lines += line.toString();
    }
    return lines.join(u'\n');
}

} // namespace

QString releaseNotesText(const QString &html)
{
    static const std::array replacements{
        std::pair(QRegularExpression(QStringLiteral("(?i)<\\s*li[^>]*>")), QStringLiteral("• ")),
        std::pair(QRegularExpression(QStringLiteral("(?i)<\\s*br\\s*/?>")), QStringLiteral("\n")),
        std::pair(QRegularExpression(QStringLiteral("(?i)<\\s*/\\s*(li|p|div|h[1-6]|tr)\\s*>")),
                  QStringLiteral("\n")),
        std::pair(QRegularExpression(QStringLiteral("<[^>]+>")), QString()),
    };
    QString text = html;
    for (const auto &[tag, replacement] : replacements) {
        // Behind the last ">" no tag can end: from each "<" there the pattern would search in vain
        // to the end of the text, and a text of nothing but "<" would take hours.
        const qsizetype end = text.lastIndexOf(u'>') + 1;
        text = text.first(end).replace(tag, replacement) + text.sliced(end);
    }
    return withLinesTidied(withEntitiesReplaced(text));
}

} // namespace tallyglass
