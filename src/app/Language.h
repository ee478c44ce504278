#pragma once

#include <QStringList>

namespace tallyglass {

/// Takes the first of \a preferred (BCP 47 tags, the dearest first) that texts exist in, for texts,
/// numbers and dates alike. Japanese where none does. The application object must exist.
void chooseLanguage(const QStringList &preferred);

} // namespace tallyglass
