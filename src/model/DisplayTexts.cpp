#include "model/DisplayTexts.h"

#include <QCoreApplication>

namespace tallyglass {

QString displayText(TextKey key)
{
    // Without an entry in a catalogue Qt gives the key back.
    const QString translated = qtTrId(key.text().key);
    return translated == QLatin1String(key.text().key) ? QString::fromUtf8(key.text().japanese)
                                                       : translated;
}

QString formatText(TextKey key, const QStringList &arguments)
{
    const QString format = displayText(key);
    QString filled;
    qsizetype next = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QStringView rest = QStringView(format).mid(i);
        if (rest.startsWith(u"%@") || rest.startsWith(u"%d")) {
            filled += arguments.value(next++);
            i += 1;
        } else if (rest.size() >= 4 && rest[0] == u'%' && rest[1].isDigit() && rest[2] == u'$') {
            filled += arguments.value(rest[1].digitValue() - 1);
            i += 3;
        } else {
            filled += format[i];
        }
    }
    return filled;
}

} // namespace tallyglass
