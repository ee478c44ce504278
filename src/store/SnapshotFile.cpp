#include "store/SnapshotFile.h"

#include "model/UsageJson.h"
#include "platform/Files.h"
#include "store/JsonFile.h"

namespace tallyglass {

namespace {

const auto fileName = QStringLiteral("usage_snapshot.json");

} // namespace

QByteArray encodeSnapshot(const UsageSnapshot &snapshot)
{
    return QJsonDocument(toJson(snapshot)).toJson(QJsonDocument::Indented);
}

void writeSnapshot(const UsageSnapshot &snapshot, const StorageLocations &locations)
{
    const QByteArray content = encodeSnapshot(snapshot);
    for (const QString &path : locations.writingPaths(fileName))
        writeFileAtomically(path, content);
}

std::optional<UsageSnapshot> readSnapshot(const StorageLocations &locations)
{
    for (const QString &path : locations.readingPaths(fileName)) {
        if (auto snapshot = snapshotFromJson(readOwnFile(path).document.object()))
            return snapshot;
    }
    return std::nullopt;
}

} // namespace tallyglass
