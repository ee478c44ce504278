#pragma once

#include <QFile>
#include <QTest>

namespace tallyglass::test {

/// A file of tests/data/.
inline QByteArray testData(const char *name)
{
    QFile file(QStringLiteral(TG_TEST_DATA "/") + QString::fromUtf8(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(file.fileName()));
    return file.readAll();
}

} // namespace tallyglass::test
