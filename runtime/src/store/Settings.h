#pragma once

#include "store/Database.h"

namespace engine {

// Where new call dirs go to.
struct Library
{
    QString folder;      // absolute, not necessarily there (see requireLibrary)
    bool isDisk = false; // a disk was mounted on it when it was chosen
};

Library libraryInUse(Database &database);

// Whether the disk is not mounted on the folder now: what stands there is empty, and would hide under it again.
bool isAway(const Library &library);

// Makes the folder where it is missing, checks that it can be written, and remembers it.
// Throws Failure and changes nothing otherwise.
void changeLibrary(Database &database, const QString &path);

// The text model that the user chose, by Ollama's name for it; empty when none was.
QString textModel(Database &database);
void setTextModel(Database &database, const QString &name);

// Throws Failure, with a sentence that says what to do, unless files can be made in the folder, and something
// be written to them.
void requireWritable(const QString &folder);

// The same for the library in use. The usual one is made where it is missing. One that was chosen was there
// once: its disk is not connected, and transcripts put in its place would be hidden when it is again.
void requireLibrary(const Library &library);

} // namespace engine
