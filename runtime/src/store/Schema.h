#pragma once

namespace engine {

class Database;

// The version of the store that this program writes.
int newestSchema();

// Applies, inside the caller's transaction, every migration that the store has not seen.
// Throws Failure for a store that a newer program wrote.
void bringToNewest(Database &database);

// Whether every row meets the conditions (CHECK) of its table.
bool conditionsHold(Database &database);

// Lets jobs and entries of an older store, which can only be read, be read like those of the newest.
void showListAsNewest(Database &database);

} // namespace engine
