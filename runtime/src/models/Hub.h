#pragma once

#include "core/Failure.h"
#include "models/Http.h"
#include "models/Repository.h"

namespace engine {

// Hugging Face. TUPPI_HUB names another address, for tests and mirrors; a plain http one only on this
// computer. All throw Failure.

Repository askForRepository(Http &http, const QString &repo);
QByteArray addressOf(const QString &repo, const QString &commit, const QString &path);

// The sentence for what it, or a computer behind it, answered instead of what was asked for.
Failure hubFailure(const HttpReply &reply, const QString &repo);

// Seconds without a byte after which a connection counts as broken; TUPPI_STALL_SECONDS changes it.
int stallSeconds(int otherwise);

} // namespace engine
