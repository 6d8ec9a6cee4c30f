#pragma once

#include "store/Database.h"

namespace engine {

// The folder that new call dirs go to: absolute, not necessarily there.
QString libraryFolder(Database &database);

// Makes the folder where it is missing, checks that it can be written, and remembers it.
// Throws Failure and changes nothing otherwise.
void changeLibrary(Database &database, const QString &path);

// Throws Failure, with a sentence that says what to do, unless files can be made in the folder.
void requireWritable(const QString &folder);

} // namespace engine
