#pragma once

#include "Fuzz.h"
#include "collect/LogFileReader.h"
#include "support/PlainReader.h"

#include <QTimeZone>

#include <optional>

namespace tallyglass::fuzz {

/// Reads a file of this content fast and plainly, and compares what both have found.
inline void compareReaders(UsageProvider provider, bool isDocument, const QByteArray &content)
{
    static const QTimeZone zone("America/Los_Angeles"); // has gaps and repeated hours
    write(QStringLiteral("log"), content);
    const LogFile file{.provider = provider,
                       .path = home().toStdString() + "/log",
                       .modified = fromUnixNumber(1'767'225'600),
                       .size = content.size(),
                       .isDocument = isDocument};
    // As in a collection, one reader reads many files; renewed, for it remembers all their names.
    static std::optional<LogFileReader> reader;
    static int files = 0;
    if (files++ % 1'000 == 0)
        reader.emplace(zone);
    std::vector<UsageEvent> events;
    std::vector<UsageEvent> expected;
    try {
        reader->readLogFile(file, events);
        expected = test::readPlainly(file, zone);
    } catch (const FatalFault &) {
        return;
    }
    require(events == expected, "both readers find the same events");
}

} // namespace tallyglass::fuzz
