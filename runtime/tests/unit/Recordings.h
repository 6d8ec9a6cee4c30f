#pragma once

#include "core/ChildProgram.h"
#include "media/AudioReader.h"

#include "Support.h"

#include <QStandardPaths>

namespace engine::test {

// Makes a recording. A test calls it inside of ASSERT_NO_FATAL_FAILURE.
inline void ffmpeg(const QStringList &arguments)
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    ASSERT_FALSE(program.isEmpty()) << "the test needs the program ffmpeg";
    const QStringList quietly{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")};
    const ProgramResult result = ChildProgram(program, quietly + arguments).finish(60000);
    ASSERT_EQ(result.exitStatus, 0) << arguments.join(u' ').toStdString();
}

// All that a recording sounds like.
inline std::vector<int16_t> soundOf(const QString &path)
{
    AudioReader reader(path);
    std::vector<int16_t> samples;
    std::vector<int16_t> block(1000);
    while (const size_t count = reader.read(block))
        samples.insert(samples.end(), block.begin(), block.begin() + std::ptrdiff_t(count));
    EXPECT_EQ(reader.position(), int64_t(samples.size()));
    return samples;
}

} // namespace engine::test
