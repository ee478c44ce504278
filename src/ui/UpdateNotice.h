#pragma once

#include "update/AppUpdateInfo.h"

#include <QMetaType>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace tallyglass {

/// The notice that a newer version is offered.
struct UpdateNotice
{
    Q_GADGET
    QML_VALUE_TYPE(updateNotice)
    Q_PROPERTY(bool isShown MEMBER isShown CONSTANT)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString releaseNotes MEMBER releaseNotes CONSTANT)
    Q_PROPERTY(QUrl releaseNotesUrl MEMBER releaseNotesUrl CONSTANT)
    Q_PROPERTY(bool hasReleaseNotesUrl READ hasReleaseNotesUrl CONSTANT)

public:
    bool isShown = false;
    QString title;
    QString releaseNotes; ///< empty: none
    QUrl releaseNotesUrl;

    bool operator==(const UpdateNotice &) const = default;
    bool hasReleaseNotesUrl() const { return !releaseNotesUrl.isEmpty(); }
};

UpdateNotice updateNotice(const std::optional<AppUpdateInfo> &update);

} // namespace tallyglass
