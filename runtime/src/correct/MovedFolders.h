#pragma once

#include "store/Database.h"

namespace engine {

// Looks in the library for the call dirs of finished transcripts that are not in their places: renamed by hand, or moved
// along to a library that was chosen since. One is taken for a transcript's own where its segments are what the store
// holds of it, byte for byte, and no other job has it. Best effort, and cheap where the library holds nothing unknown.
void findMovedFolders(Database &database);

} // namespace engine
