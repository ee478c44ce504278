#include "services/ClaudeUsageAPIStatus.h"

#include "model/DisplayTexts.h"
#include "model/Formatting.h"

#include <QLocale>

namespace tallyglass {

namespace {

struct OutcomeText
{
    const QTimeZone &zone;

    QString operator()(const apistatus::NotAttempted &) const
    {
        return displayText("api.status.never");
    }
    QString operator()(const apistatus::Ok &ok) const
    {
        return formatText("api.status.ok", {formatClockTime(ok.at, zone)});
    }
    QString operator()(const apistatus::Http &http) const
    {
        return formatText("api.status.http", {QString::number(http.code)});
    }
    QString operator()(const apistatus::NoToken &) const
    {
        return displayText("api.status.noToken");
    }
    QString operator()(const apistatus::TokenExpired &) const
    {
        return displayText("api.status.expired");
    }
    QString operator()(const apistatus::NetworkError &) const
    {
        return displayText("api.status.network");
    }
    QString operator()(const apistatus::ParseFailed &) const
    {
        return displayText("api.status.parse");
    }
};

} // namespace

QString statusText(const ClaudeUsageAPIStatus &status, const QTimeZone &zone)
{
    return formatText("api.status.format", {std::visit(OutcomeText{zone}, status)});
}

} // namespace tallyglass
