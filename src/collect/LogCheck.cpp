#include "collect/LogCheck.h"

#include "collect/FieldAliases.h"
#include "json/JsonReader.h"

#include <QFile>
#include <simdjson.h>

namespace tallyglass {

namespace {

using Reason = PassedOverLog::Reason;

bool isBroken(const LogFile &file, const QByteArray &line, JsonReader &reader)
{
    const QByteArray trimmed = QString::fromUtf8(line).trimmed().toUtf8();
    if (trimmed.isEmpty())
        return false;
    if (!trimmed.startsWith('{') && !trimmed.startsWith('['))
        return !file.path.ends_with(".log");
    return !reader.parseCopy({trimmed.constData(), static_cast<std::size_t>(trimmed.size())});
}

} // namespace

std::vector<PassedOverLog> checkLogFile(const LogFile &file)
{
    std::vector<PassedOverLog> faults;
    const auto report = [&](Reason reason, std::vector<std::uint32_t> lines = {}) {
        faults.push_back(
            {.reason = reason, .path = file.path, .size = file.size, .lines = std::move(lines)});
    };
    QFile opened(QFile::decodeName(file.path.c_str()));
    if (!opened.open(QIODevice::ReadOnly)) {
        report(Reason::Unreadable);
        return faults;
    }
    const QByteArray content = opened.read(largestFileRead);
    if (!simdjson::validate_utf8(content.constData(), static_cast<std::size_t>(content.size()))) {
        report(Reason::NotUtf8);
        return faults;
    }

    JsonReader reader(countingFields);
    if (file.isDocument) {
        if (isBroken(file, content, reader))
            report(Reason::BrokenLines, {1});
        return faults;
    }
    std::vector<std::uint32_t> broken;
    const QList<QByteArray> lines = content.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!isBroken(file, lines[i], reader))
            continue;
        const auto number = static_cast<std::uint32_t>(i + 1);
        if (i + 1 == lines.size())
            report(Reason::TornLine, {number});
        else
            broken.push_back(number);
    }
    if (!broken.empty())
        report(Reason::BrokenLines, std::move(broken));
    return faults;
}

} // namespace tallyglass
