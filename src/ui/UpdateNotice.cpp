#include "ui/UpdateNotice.h"

#include "model/DisplayTexts.h"

namespace tallyglass {

UpdateNotice updateNotice(const std::optional<AppUpdateInfo> &update)
{
    UpdateNotice notice;
    if (!update)
        return notice;
    notice.isShown = true;
    notice.title = formatText("update.available", {update->version});
    notice.releaseNotes = update->releaseNotes.value_or(QString());
    notice.releaseNotesUrl = update->releaseNotesURL.value_or(QUrl());
    return notice;
}

} // namespace tallyglass
