#pragma once

#include "core/ChildProgram.h"
#include "core/Paths.h"

#include <QByteArray>

#include <optional>

namespace engine::commands {

// What the worker program says of its two parts. Loading FFmpeg costs more than everything else that is looked at, so
// that an answer without trouble is remembered: it holds for a day, while all files that it comes from (program,
// libraries, speech model) are the same ones, unchanged.
class SelfTest
{
public:
    // Starts the worker, beside the caller, where nothing is remembered.
    explicit SelfTest(const Paths &paths);

    struct Troubles // each a sentence, empty when all is well
    {
        QString recogniser;
        QString decoding;
    };
    Troubles finish();

private:
    QString m_memory; // file
    qint64 m_startedMs = 0;
    std::optional<ChildProgram> m_worker;
};

} // namespace engine::commands
