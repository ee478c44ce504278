#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace tallyglass::test {

/// A home folder of its own for one test, gone with it.
class TemporaryHome
{
public:
    QString path() const { return m_folder.path(); }
    /// The absolute path of a file or folder, given from the home folder on.
    QString path(const QString &relative) const { return m_folder.filePath(relative); }

    /// Writes a file and the folders above it. Gives its absolute path.
    QString write(const QString &relative, const QByteArray &content = {}) const
    {
        const QString absolute = path(relative);
        QFile file(absolute);
        if (!QDir().mkpath(QFileInfo(absolute).path()) || !file.open(QIODevice::WriteOnly)
            || file.write(content) != content.size())
            qFatal("cannot write %s", qUtf8Printable(absolute));
        return absolute;
    }

    QByteArray read(const QString &relative) const
    {
        QFile file(path(relative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
};

} // namespace tallyglass::test
