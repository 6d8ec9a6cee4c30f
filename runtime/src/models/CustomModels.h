#pragma once

#include "core/FileDescriptor.h"
#include "core/Paths.h"

#include <QString>

#include <optional>
#include <vector>

namespace engine {

// A speech model that the user has added. The list of them is one file, replaced as a whole, so that reading
// needs no lock; a model's own file is there, whole and checked, before its record is.
struct CustomModel
{
    QString id;
    QString name; // the user's label
    QString kind; // "whisper"
    QString repo; // owner/model-name
    QString file; // in the repository
    QString sha256;
    qint64 size = 0; // bytes
};

// What stands before the id where a custom model is asked for: "custom:ID".
inline constexpr QStringView customPrefix = u"custom:";

// In the order in which they were added. Throws Failure when the list is damaged; it is left as it is.
std::vector<CustomModel> customModels(const Paths &paths);

// Throws Failure when there is none with this id.
CustomModel customModelById(const Paths &paths, const QString &id);

// Where the model's own file stands: it goes by what it holds.
QString customModelFile(const Paths &paths, const CustomModel &model);

// Opens the file for a job. What is open stays readable, also for other programs by /proc/PID/fd/N, when the
// model is removed.
// Throws Failure, with what to do, when it is missing or not whole.
FileDescriptor openCustomModel(const Paths &paths, const CustomModel &model);

// Throws Failure when this name or this file (by its checksum) is there already.
void requireNewModel(const std::vector<CustomModel> &models, const QString &name, const QString &sha256 = {});

// Gives the model an id, adds its record and gives it back. Throws Failure.
CustomModel addCustomModel(const Paths &paths, CustomModel model);

// Removes the record, then the file. Throws Failure.
void removeCustomModel(const Paths &paths, const QString &id);

} // namespace engine
