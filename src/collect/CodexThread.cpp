#include "collect/CodexThread.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace tallyglass {

bool isForkedThread(const std::string &path)
{
    constexpr qint64 longestLine = 4'194'304; // bytes; the line holds the instructions too
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QJsonObject first = QJsonDocument::fromJson(file.readLine(longestLine)).object();
    if (first.value(QLatin1String("type")) != QLatin1String("session_meta"))
        return false;
    const QJsonObject meta = first.value(QLatin1String("payload")).toObject();
    return !meta.value(QLatin1String("forked_from_id")).toString().isEmpty()
        || meta.value(QLatin1String("source")).toObject().contains(QLatin1String("subagent"));
}

} // namespace tallyglass
