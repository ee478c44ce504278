#include "ui/Texts.h"

#include "model/DisplayTexts.h"
#include "model/FatalFault.h"

namespace tallyglass {

QString Texts::text(const QString &key) const
{
    const auto found = TextKey::find(key.toStdString());
    if (!found)
        stopProgram("a QML file asks for a text that does not exist");
    return displayText(*found);
}

} // namespace tallyglass
