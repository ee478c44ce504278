#include "platform/Files.h"
#include "platform/linux/LinuxPorts.h"

#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

#include <cerrno>

namespace tallyglass {

namespace {

constexpr qint64 largestEntry = qint64{64} * 1024; // bytes; real ones have a few hundred

/// The keys of the group that matters.
std::optional<QHash<QString, QString>> readKeys(const QString &path)
{
    const auto text = readWholeFile(path, largestEntry);
    if (!text)
        return std::nullopt;

    std::optional<QHash<QString, QString>> keys;
    bool isInGroup = false;
    const QStringList lines = QString::fromUtf8(*text).split(u'\n');
    for (const QString &untrimmed : lines) {
        const QString line = untrimmed.trimmed();
        if (line.startsWith(u'[')) {
            isInGroup = line == QStringLiteral("[Desktop Entry]");
            if (isInGroup && !keys)
                keys.emplace();
        } else if (const qsizetype sign = line.indexOf(u'='); isInGroup && sign > 0) {
            keys->insert(line.first(sign).trimmed(), line.sliced(sign + 1).trimmed());
        }
    }
    return keys;
}

/// Undoes the escapes that every text value may have.
QString unescaped(const QString &value)
{
    static const QHash<QChar, QChar> meanings{
        {u's', u' '}, {u'n', u'\n'}, {u't', u'\t'}, {u'r', u'\r'}, {u'\\', u'\\'}};
    QString result;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == u'\\' && i + 1 < value.size() && meanings.contains(value[i + 1]))
            result += meanings[value[++i]];
        else
            result += value[i];
    }
    return result;
}

/// Stands before a path with a percent sign: some sessions look for the first word of a command
/// before they have turned "%%" into "%", and find nothing.
const auto launcher = QStringLiteral("env ");

/// The program in a command line, whose quoting is a layer of its own below that of the value.
QString programIn(QString command)
{
    if (command.startsWith(launcher))
        command = command.sliced(launcher.size()).trimmed();
    const bool isQuoted = command.startsWith(u'"');
    QString word;
    for (qsizetype i = isQuoted ? 1 : 0; i < command.size(); ++i) {
        if (command[i] == (isQuoted ? u'"' : u' '))
            break;
        if (isQuoted && command[i] == u'\\' && i + 1 < command.size())
            ++i;
        word += command[i];
    }
    return word.replace(QStringLiteral("%%"), QStringLiteral("%"));
}

QString quoted(const QString &program)
{
    QString word;
    for (const QChar character : program) {
        if (QStringLiteral("\"`$\\").contains(character))
            word += u'\\';
        word += character;
    }
    word.replace(u'%', QStringLiteral("%%")); // one alone would begin a field code
    return u'"' + word + u'"';
}

QString escaped(QString value)
{
    return value.replace(u'\\', QStringLiteral("\\\\"))
        .replace(u'\n', QStringLiteral("\\n"))
        .replace(u'\t', QStringLiteral("\\t"))
        .replace(u'\r', QStringLiteral("\\r"));
}

/// What a desktop entry says about a program that the session starts.
struct DesktopEntry
{
    QString program; ///< of its command, without quotes
    bool isOff = false; ///< by any of the switches that desktops offer their users
};

/// Nothing when there is no such file or it is no desktop entry.
std::optional<DesktopEntry> readDesktopEntry(const QString &path)
{
    const auto keys = readKeys(path);
    if (!keys)
        return std::nullopt;
    return DesktopEntry{
        .program = programIn(unescaped(keys->value(QStringLiteral("Exec")))),
        .isOff = keys->value(QStringLiteral("Hidden")) == QStringLiteral("true")
            || keys->value(QStringLiteral("X-GNOME-Autostart-enabled")) == QStringLiteral("false"),
    };
}

/// The text of an entry that starts \a program, a full path of whatever characters.
QByteArray desktopEntry(const QString &program)
{
    const QString command = (program.contains(u'%') ? launcher : QString()) + quoted(program);
    return "[Desktop Entry]\nType=Application\nName=Tallyglass\nIcon=tallyglass\nTryExec="
        + escaped(program).toUtf8() + "\nExec=" + escaped(command).toUtf8() + '\n';
}

class AutostartEntry final : public LoginItem
{
public:
    explicit AutostartEntry(Autostart autostart)
        : m_autostart(std::move(autostart))
    {
    }

    bool isEnabled() const override;
    std::optional<QString> setEnabled(bool enabled) override;

private:
    QString path() const;
    bool startsProgram(const QString &command) const;

    Autostart m_autostart;
};

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
    if (!writeFileAtomically(path(), desktopEntry(m_autostart.program)))
        return qt_error_string(errno);
    return std::nullopt;
}

QString AutostartEntry::path() const
{
    return m_autostart.configFolder + QStringLiteral("/autostart/tallyglass.desktop");
}

bool AutostartEntry::startsProgram(const QString &command) const
{
    const QString found = command.contains(u'/')
        ? command
        : QStandardPaths::findExecutable(command, m_autostart.searchPath);
    return found == m_autostart.program
        || QFileInfo(found).canonicalFilePath() == m_autostart.program;
}

} // namespace

std::unique_ptr<LoginItem> makeAutostartEntry(Autostart autostart)
{
    return std::make_unique<AutostartEntry>(std::move(autostart));
}

} // namespace tallyglass
