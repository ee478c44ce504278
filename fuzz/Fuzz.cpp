#include "Fuzz.h"

#include "model/FatalFault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace tallyglass {

// In place of the program's own.
void stopProgram(const char *)
{
    throw fuzz::FatalFault{};
}

namespace fuzz {

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "This does not hold: %s\n", what);
    std::abort();
}

QString home()
{
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/tallyglass-fuzz"));
    return folder.path();
}

void write(const QString &relative, const QByteArray &content)
{
    const QString path = home() + u'/' + relative;
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "a file can be written");
}

} // namespace fuzz
} // namespace tallyglass
