#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace tallyglass {

/// A version that is offered and newer than the running one.
struct AppUpdateInfo
{
    QString version; ///< as shown to the user
    std::optional<QString> build;
    QUrl appcastURL; ///< where to download it; the feed's own address when the feed names none
    std::optional<QString> releaseNotes; ///< plain text without empty lines
    std::optional<QUrl> releaseNotesURL;

    bool operator==(const AppUpdateInfo &) const = default;
};

} // namespace tallyglass
