#pragma once

#include <QString>

namespace tallyglass {

/// The text of release notes in HTML: list items begin with a bullet, blocks end their line, and
/// no line is empty. Empty when the notes hold nothing but tags and white space.
QString releaseNotesText(const QString &html);

} // namespace tallyglass
