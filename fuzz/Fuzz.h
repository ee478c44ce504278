#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace tallyglass::fuzz {

/// Thrown where the program would end itself, since sums of made-up logs overflow. Where nothing
/// catches it, it is a finding.
struct FatalFault
{
};

/// Ends the run with a line that says what did not hold; the fuzzer then keeps the input.
void require(bool holds, const char *what);

/// A home folder in memory, the same one for the whole run.
QString home();
/// Writes a file of that home, and the folders above it.
void write(const QString &relative, const QByteArray &content);

} // namespace tallyglass::fuzz
