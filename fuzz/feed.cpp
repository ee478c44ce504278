// A feed gives items that name a version, lead to the web only and whose notes have no empty line.

#include "Fuzz.h"
#include "update/ReleaseNotesText.h"
#include "update/SparkleAppcastParser.h"
#include "update/VersionOrder.h"

using namespace tallyglass;
using fuzz::require;

namespace {

bool isOnTheWeb(const std::optional<QUrl> &url)
{
    return !url
        || (url->isValid()
            && (url->scheme() == QLatin1String("http") || url->scheme() == QLatin1String("https")));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    const QByteArray feed(data, static_cast<qsizetype>(size));
    const auto items = SparkleAppcastParser::parse(feed);
    const QString notes = releaseNotesText(QString::fromUtf8(feed));
    require(!notes.startsWith(u'\n') && !notes.endsWith(u'\n') && !notes.contains(u"\n\n"),
            "notes have no empty line");
    for (std::size_t i = 0; items && i < items->size(); ++i) {
        const auto &item = (*items)[i];
        require(!item.versionText().isEmpty(), "an item names a version");
        require(isOnTheWeb(item.downloadURL) && isOnTheWeb(item.releaseNotesLink),
                "links lead to the web");
        const QString before = (*items)[i > 0 ? i - 1 : 0].versionText();
        require(is_gt(compareVersions(before, item.versionText()))
                    == is_lt(compareVersions(item.versionText(), before)),
                "versions have an order");
    }
    return 0;
}
