#include "platform/linux/AutostartEntry.h"

#include "platform/PrivateFolder.h"
#include "platform/linux/ConfigFolder.h"
#include "platform/linux/DesktopEntry.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <cerrno>

namespace tallyglass {

namespace {

/// Gives the system's text of what went wrong.
std::optional<QString> writeWhole(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    // On a full disk commit() succeeds with half a file, so that is looked at before.
    if (file.write(content) != content.size() || !file.flush() || file.size() != content.size()) {
        QString error = file.errorString();
        file.cancelWriting();
        return error;
    }
    return file.commit() ? std::nullopt : std::optional{file.errorString()};
}

} // namespace

AutostartEntry::AutostartEntry(Facts facts)
    : m_facts(std::move(facts))
{
}

bool AutostartEntry::isEnabled() const
{
    const auto entry = readDesktopEntry(path());
    return entry && !entry->isOff && startsProgram(entry->program);
}

std::optional<QString> AutostartEntry::setEnabled(bool enabled)
{
    if (enabled == isEnabled())
        return std::nullopt;
    if (!enabled) {
        QFile file(path());
        return file.remove() ? std::nullopt : std::optional{file.errorString()};
    }
    if (!makePrivateFolder(QFileInfo(path()).path()))
        return qt_error_string(errno);
    return writeWhole(path(), desktopEntry(m_facts.program));
}

QString AutostartEntry::path() const
{
    return m_facts.configFolder + QStringLiteral("/autostart/tallyglass.desktop");
}

bool AutostartEntry::startsProgram(const QString &command) const
{
    const QString found = command.contains(u'/')
        ? command
        : QStandardPaths::findExecutable(command, m_facts.searchPath);
    return found == m_facts.program || QFileInfo(found).canonicalFilePath() == m_facts.program;
}

} // namespace tallyglass
