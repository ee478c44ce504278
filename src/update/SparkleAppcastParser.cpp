#include "update/SparkleAppcastParser.h"

#include "platform/HttpClient.h"
#include "update/ModestXml.h"
#include "update/WebAddress.h"

#include <QXmlStreamReader>

namespace tallyglass {

namespace {

using Item = SparkleAppcastParser::Item;

template<typename Value>
void replaceBy(std::optional<Value> &field, std::optional<Value> value)
{
    if (value)
        field = std::move(value);
}

std::optional<QString> unlessEmpty(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional{text};
}

std::optional<QString> attribute(const QXmlStreamAttributes &attributes, QLatin1String prefixed,
                                 QLatin1String bare)
{
    const QStringView value = attributes.value(attributes.hasAttribute(prefixed) ? prefixed : bare);
    return unlessEmpty(value.trimmed().toString());
}

/// The trimmed text of the current element and of those in it.
QString readText(QXmlStreamReader &reader)
{
    return reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
}

void readChild(QXmlStreamReader &reader, Item &item)
{
    // Local names: feeds disagree on which elements belong to a namespace.
    const QStringView name = reader.name();
    if (name == QLatin1String("enclosure")) {
        const QXmlStreamAttributes attributes = reader.attributes();
        replaceBy(
            item.buildVersion,
            attribute(attributes, QLatin1String("sparkle:version"), QLatin1String("version")));
        replaceBy(item.shortVersion,
                  attribute(attributes, QLatin1String("sparkle:shortVersionString"),
                            QLatin1String("shortVersionString")));
        replaceBy(item.downloadURL, webAddress(attributes.value(QLatin1String("url")).toString()));
        reader.skipCurrentElement();
    } else if (name == QLatin1String("title")) {
        replaceBy(item.title, unlessEmpty(readText(reader)));
    } else if (name == QLatin1String("version")) {
        replaceBy(item.buildVersion, unlessEmpty(readText(reader)));
    } else if (name == QLatin1String("shortVersionString")) {
        replaceBy(item.shortVersion, unlessEmpty(readText(reader)));
    } else if (name == QLatin1String("description")) {
        replaceBy(item.releaseNotesHTML, unlessEmpty(readText(reader)));
    } else if (name == QLatin1String("releaseNotesLink")) {
        replaceBy(item.releaseNotesLink, webAddress(readText(reader)));
    } else {
        reader.skipCurrentElement();
    }
}

/// Looks at the item's own children only: its patches from older versions are enclosures as well,
/// one level deeper, and no one can install those by hand.
Item readItem(QXmlStreamReader &reader)
{
    Item item;
    while (reader.readNextStartElement())
        readChild(reader, item);
    return item;
}

} // namespace

QString SparkleAppcastParser::Item::versionText() const
{
    if (shortVersion)
        return *shortVersion;
    if (title)
        return QString(*title).remove(QLatin1String("Version ")).trimmed();
    return buildVersion.value_or(QString());
}

std::optional<std::vector<Item>> SparkleAppcastParser::parse(const QByteArray &feed)
{
    if (feed.size() > largestHttpBody)
        return std::nullopt;
    // Decoded here, so that no encoding which the feed claims shows the reader another text.
    const QString xml = QString::fromUtf8(feed);
    if (!isModestXml(xml))
        return std::nullopt;

    QXmlStreamReader reader(xml);
    std::vector<Item> items;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement() || reader.name() != QLatin1String("item"))
            continue;
        Item item = readItem(reader);
        if (!item.versionText().isEmpty())
            items.push_back(std::move(item));
    }
    return reader.hasError() ? std::nullopt : std::optional{std::move(items)};
}

} // namespace tallyglass
