#include "platform/linux/DesktopEntry.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

namespace tallyglass {

namespace {

constexpr qint64 largestEntry = qint64{64} * 1024; // bytes; real ones have a few hundred

/// The keys of the group that matters.
std::optional<QHash<QString, QString>> readKeys(const QString &path)
{
    // Looked at before it is opened: opening a pipe would wait for somebody to write to it.
    const QFileInfo info(path);
    QFile file(path);
    if (!info.isFile() || info.size() > largestEntry || !file.open(QIODevice::ReadOnly))
        return std::nullopt;

    std::optional<QHash<QString, QString>> keys;
    bool isInGroup = false;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
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

/// The first word of a command line, whose quoting is a layer of its own below that of the value.
QString firstWord(const QString &command)
{
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

} // namespace

std::optional<DesktopEntry> readDesktopEntry(const QString &path)
{
    const auto keys = readKeys(path);
    if (!keys)
        return std::nullopt;
    return DesktopEntry{
        .program = firstWord(unescaped(keys->value(QStringLiteral("Exec")))),
        .isOff = keys->value(QStringLiteral("Hidden")) == QStringLiteral("true")
            || keys->value(QStringLiteral("X-GNOME-Autostart-enabled")) == QStringLiteral("false"),
    };
}

QByteArray desktopEntry(const QString &program)
{
    return "[Desktop Entry]\nType=Application\nName=Tallyglass\nIcon=tallyglass\nExec="
        + escaped(quoted(program)).toUtf8() + '\n';
}

} // namespace tallyglass
