#include "output/CallDirWriter.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "intake/CallDir.h"
#include "output/Formats.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace engine {

void writeCallDir(const Job &job, const std::vector<Segment> &segments, const QString &cleanText,
                  const std::optional<Summary> &summary)
{
    // A folder that the user has thrown away is not made again.
    if (!QFileInfo(job.callDir).isDir())
        throw Failure(u"The transcript's folder is gone: “"_s + job.callDir + u"”."_s);
    const QString technical = job.callDir + u'/' + CallDirNames::technical;
    makeFolder(technical, u"The transcript's folder could not be written"_s);
    writeFile(technical + u"/transcript.txt"_s, cleanText.toUtf8());
    writeFile(technical + u"/segments.json"_s, segmentsFile(job, segments));
    writeFile(technical + u"/subtitles.srt"_s, subRipFile(segments));
    writeFile(technical + u"/subtitles.vtt"_s, webVttFile(segments));
    writeFile(job.callDir + u'/' + CallDirNames::transcript, transcriptFile(segments));
    if (summary)
        writeFile(job.callDir + u'/' + CallDirNames::summary, summaryFile(job, *summary, cleanText));
    syncFolder(technical);
    syncFolder(job.callDir);
}

} // namespace engine
