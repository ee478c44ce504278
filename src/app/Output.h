#pragma once

#include <QString>

namespace tallyglass {

/// Writes to the standard output, and says on the other one when that is not possible. Returns the
/// exit status: 0 or 1.
int print(const QByteArray &text);

/// Writes one line to the standard error.
void complain(const QString &message);

/// Makes sure that the three standard streams exist: a file opened in the place of a closed one
/// would get what is printed. They are as unusable as before.
void reserveStandardStreams();

} // namespace tallyglass
