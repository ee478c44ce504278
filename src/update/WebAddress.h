#pragma once

#include <QUrl>

#include <optional>

namespace tallyglass {

/// The text as an absolute http or https address; nothing for anything else. What a feed links to
/// is opened by the system, which would as well open files and run scripts.
std::optional<QUrl> webAddress(const QString &text);

} // namespace tallyglass
