#include "update/ModestXml.h"

#include <QString>

namespace tallyglass {

namespace {

constexpr int mostAttributes = 32;
constexpr int mostLevels = 32;

/// Cuts off the front up to and including \a end, which is looked for behind the first \a start
/// characters: "<!-->" is not the end of a comment. False when there is no end.
bool skipPast(QStringView &xml, QLatin1String end, qsizetype start)
{
    const qsizetype position = xml.indexOf(end, start);
    if (position < 0)
        return false;
    xml = xml.sliced(position + end.size());
    return true;
}

/// Cuts a tag off the front. Every attribute has its quotes, in which a ">" ends nothing. False
/// when the tag has no end or too many attributes.
bool skipTag(QStringView &xml, int &level)
{
    int attributes = 0;
    for (qsizetype i = 1; i < xml.size(); ++i) {
        if (xml[i] == u'"' || xml[i] == u'\'') {
            i = xml.indexOf(xml[i], i + 1);
            if (i < 0 || ++attributes > mostAttributes)
                return false;
        } else if (xml[i] == u'>') {
            if (xml[1] == u'/')
                --level;
            else if (xml[i - 1] != u'/')
                ++level;
            xml = xml.sliced(i + 1);
            return true;
        }
    }
    return false;
}

/// Cuts the markup off the front that begins there.
bool skipMarkup(QStringView &xml, int &level)
{
    if (xml.startsWith(QLatin1String("<!--")))
        return skipPast(xml, QLatin1String("-->"), 4);
    if (xml.startsWith(QLatin1String("<![CDATA[")))
        return skipPast(xml, QLatin1String("]]>"), 9);
    if (xml.startsWith(QLatin1String("<?")))
        return skipPast(xml, QLatin1String("?>"), 2);
    const bool isDocumentType = xml.startsWith(QLatin1String("<!"));
    return !isDocumentType && skipTag(xml, level);
}

} // namespace

bool isModestXml(QStringView xml)
{
    int level = 0;
    for (qsizetype text = xml.indexOf(u'<'); text >= 0; text = xml.indexOf(u'<')) {
        xml = xml.sliced(text);
        if (!skipMarkup(xml, level) || level > mostLevels)
            return false;
    }
    return true;
}

} // namespace tallyglass
