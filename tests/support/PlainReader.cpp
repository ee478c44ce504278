#include "support/PlainReader.h"

#include "collect/CopilotLogReader.h"
#include "collect/FieldAliases.h"
#include "json/JsonReader.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace tallyglass::test {

namespace {

/// Calls \a take with the JSON value that a text holds, if it holds one.
template<typename Take>
void parse(const QByteArray &json, Take take)
{
    JsonReader reader(countingFields);
    QByteArray text = json + QByteArray(JsonReader::padding, '\0');
    if (const auto *value = reader.parse({text.data(), static_cast<std::size_t>(json.size())}))
        take(*value);
}

} // namespace

std::vector<UsageEvent> readPlainly(const LogFile &file, const QTimeZone &zone)
{
    QFile opened(QString::fromStdString(file.path));
    if (!opened.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = opened.readAll();
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless
                               | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder(content);
    if (decoder.hasError())
        return {};

    NameTable names;
    const LogOrigin origin{.provider = file.provider,
                           .fileDate = file.modified,
                           .source = QFileInfo(opened).fileName(),
                           .zone = zone,
                           .names = names};
    std::vector<UsageEvent> events;
    CopilotLogReader copilot(origin);
    const bool isCopilot = file.provider == UsageProvider::Copilot;
    const auto take = [&](const JsonValue &value) {
        if (isCopilot)
            copilot.take(value);
        else
            parseRecord(value, origin, events);
    };
    if (file.isDocument && !isCopilot) {
        parse(content, take);
    } else {
        for (const QString &line : text.split(u'\n')) {
            const QString trimmed = line.trimmed();
            if (trimmed.startsWith(u'{') || trimmed.startsWith(u'['))
                parse(trimmed.toUtf8(), take);
        }
    }
    return isCopilot ? copilot.events() : events;
}

} // namespace tallyglass::test
