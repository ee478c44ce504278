#pragma once

#include <QString>

namespace tallyglass {

/// Columns that a text takes in a terminal: East Asian wide characters take two, marks none.
int displayWidth(QStringView text);

/// The text with a sign in place of each control character, line separator, direction mark and tag:
/// names in logs are anybody's, and could otherwise move the cursor or recolour the terminal.
QString printable(QStringView text);

/// The same JSON with those characters escaped.
QByteArray printableJson(const QByteArray &json);

/// Fills a text with blanks up to \a width columns; a longer one stays as it is.
QString paddedRight(const QString &text, int width);
QString paddedLeft(const QString &text, int width);

/// Cuts a text to \a width columns, the last of them then "…".
QString elided(const QString &text, int width);
/// The same at the other end.
QString elidedAtStart(const QString &text, int width);

} // namespace tallyglass
