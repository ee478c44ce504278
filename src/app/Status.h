#pragma once

#include "app/CommandLine.h"
#include "model/Instant.h"
#include "model/UsageSnapshot.h"
#include "platform/Host.h"

namespace tallyglass {

/// The first placeholder of \a format that statusText() does not know; nothing when it knows all.
std::optional<QString> unknownPlaceholder(const QString &format);

/// One line of the stored snapshot for a prompt or a bar. Nothing is read but that. \a stored is
/// absent when there is none yet.
QByteArray statusText(const command::Status &options, const std::optional<UsageSnapshot> &stored,
                      Instant now);

/// Prints that line. Gives the program's exit status.
int runStatus(const command::Status &options, const Host &host, Instant now);

} // namespace tallyglass
