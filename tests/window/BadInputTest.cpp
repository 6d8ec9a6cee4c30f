// What nobody should drop, and somebody will.

#include "window/WindowTest.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::Drag;
using test::job;
using test::waitFor;

namespace {

class BadInput : public test::WindowTest
{
protected:
    void dropAndStart(const QStringList &paths)
    {
        Drag drag(paths);
        ASSERT_TRUE(drag.enter(dropArea()));
        ASSERT_TRUE(drag.drop(dropArea()));
        ASSERT_NE(panel(), nullptr);
        click(startButton());
        ASSERT_TRUE(panelCloses());
    }
    /// A recording of so many seconds of silence: 8,000 samples of one byte each.
    QString wave(const QString &name, quint32 seconds)
    {
        const quint32 bytes = seconds * 8000;
        QByteArray file("RIFF____WAVEfmt ", 16);
        const auto put = [&file](quint32 value, int size) {
            for (int byte = 0; byte < size; ++byte)
                file.append(char(value >> (8 * byte)));
        };
        put(16, 4);
        put(1, 2); // plain samples
        put(1, 2); // one channel
        put(8000, 4);
        put(8000, 4);
        put(1, 2);
        put(8, 2);
        file.append("data");
        put(bytes, 4);
        file.append(QByteArray(qsizetype(bytes), char(128)));
        const quint32 rest = quint32(file.size()) - 8;
        for (int byte = 0; byte < 4; ++byte)
            file[4 + byte] = char(rest >> (8 * byte));
        const QString path = m_engine.home() + u'/' + name;
        test::writeFile(path, file);
        return path;
    }
    QString fifo(const QString &name)
    {
        const QString path = m_engine.home() + u'/' + name;
        ::mkfifo(QFile::encodeName(path).constData(), 0600);
        return path;
    }
    static bool somebodyReads(const QString &fifo)
    {
        const int descriptor = ::open(QFile::encodeName(fifo).constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0)
            return errno != ENXIO;
        ::close(descriptor);
        return true;
    }
};

TEST_F(BadInput, ADragOfTextIsRefused)
{
    openWindow();
    Drag drag;
    drag.data().setText(m_engine.recording(u"a.mp3"_s));
    drag.data().setHtml(u"<a href='file:///a.mp3'>a.mp3</a>"_s);
    EXPECT_FALSE(drag.enter(dropArea()));
    EXPECT_FALSE(dropArea()->isHighlighted());
    EXPECT_FALSE(drag.drop(dropArea()));
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(BadInput, ADragOfRemoteAddressesIsRefused)
{
    openWindow();
    Drag drag(QList<QUrl>{QUrl(u"https://example.org/a.mp3"_s), QUrl(u"sftp://host/b.wav"_s),
                          QUrl(u"data:audio/wav;a.wav"_s), QUrl()});
    EXPECT_FALSE(drag.enter(dropArea()));
    EXPECT_FALSE(dropArea()->isHighlighted());
    EXPECT_FALSE(drag.drop(dropArea()));
    m_app->openUrls({QUrl(u"https://example.org/a.mp3"_s)});
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(BadInput, FiveThousandFilesAtOnce)
{
    m_engine.answerHistory(test::historyOf({job(u"job-1"_s, u"Talk"_s, u"transcribing"_s)}));
    openWindow();
    QStringList paths;
    for (int i = 0; i < 5000; ++i)
        paths.append(m_engine.home() + u"/part %1.m4a"_s.arg(i));
    Drag drag(paths);
    EXPECT_TRUE(drag.enter(dropArea()));
    EXPECT_TRUE(drag.drop(dropArea()));
    ASSERT_NE(panel(), nullptr);
    ASSERT_TRUE(waitFor([&] { return !panelFiles().isEmpty(); }));
    EXPECT_EQ(panelFiles(), (QStringList{u"part 0.m4a"_s, u"part 1.m4a"_s, u"part 2.m4a"_s, u"part 3.m4a"_s,
                                         u"part 4.m4a"_s, u"and 4995 more"_s}));
    EXPECT_EQ(startButton()->title(), u"Start Transcription (5000 files)"_s);
    EXPECT_TRUE(Drag(paths).enter(panel()->findChild<DropView *>()));
    click(startButton());
    ASSERT_TRUE(panelCloses());
    EXPECT_TRUE(waitFor([this] { return summary() == u"Working on 1 file · 5000 waiting"_s; }));
    EXPECT_EQ(waitingPaths(), paths);
    EXPECT_EQ(storedPaths(), paths);
    EXPECT_LE(rowViews(), list()->viewport()->height() / Metrics::rowHeight + 2);
    EXPECT_EQ(shown(u"wait:"_s + paths.first()).title, u"part 0"_s);
}

TEST_F(BadInput, ANameWithLineBreaksStaysOnItsLine)
{
    m_engine.keepBook("queued");
    m_engine.answer(u"process"_s, Answer{});
    openWindow();
    const QString path = m_engine.recording(u"first\nsecond\r\n<b>third & 100% %1.mp3"_s);
    Drag drag(QStringList{path});
    ASSERT_TRUE(drag.enter(dropArea()));
    ASSERT_TRUE(drag.drop(dropArea()));
    ASSERT_NE(panel(), nullptr);
    ASSERT_EQ(panelFiles().size(), 1);
    EXPECT_FALSE(panelFiles().first().contains(u'\n'));
    EXPECT_TRUE(panelFiles().first().contains(u"<b>third & 100% %1.mp3"_s))
        << panelFiles().first().toStdString();
    m_engine.answerHistory(test::historyOf({job(u"job-1"_s, u"Talk"_s, u"transcribing"_s)}));
    poll();
    click(startButton());
    ASSERT_TRUE(panelCloses());
    const RowView *view = row(u"wait:"_s + path);
    ASSERT_NE(view, nullptr);
    EXPECT_FALSE(view->title()->shownText().contains(u'\n'));
    EXPECT_TRUE(view->title()->shownText().startsWith(u"first second"_s))
        << view->title()->shownText().toStdString();
    EXPECT_EQ(view->height(), Metrics::rowHeight);
    show({});
    ASSERT_TRUE(processCalls(1));
    EXPECT_EQ(processed(), QStringList{path}) << "the engine gets the name as it is";
}

TEST_F(BadInput, ANameInArabic)
{
    m_engine.keepBook("queued");
    openWindow();
    const QString path = m_engine.recording(u"مقابلة مع المديرة.mp3"_s);
    ASSERT_NO_FATAL_FAILURE(dropAndStart({path}));
    ASSERT_TRUE(rowSays(u"job-1"_s, u"Starting…"_s));
    EXPECT_EQ(shown(u"job-1"_s).title, u"مقابلة مع المديرة"_s);
    EXPECT_EQ(processed(), QStringList{path});
}

TEST_F(BadInput, PipesAndEmptyFilesHaveNoLengthAndHoldUpNobody)
{
    openWindow();
    // More pipes than files are measured at a time: were a pipe waited for, the recording would never get its
    // turn.
    const QStringList pipes{fifo(u"one.mp3"_s), fifo(u"two.mp3"_s), fifo(u"three.mp3"_s)};
    Drag drag(pipes + QStringList{m_engine.recording(u"empty.wav"_s), wave(u"talk.wav"_s, 150)});
    ASSERT_TRUE(drag.enter(dropArea()));
    ASSERT_TRUE(drag.drop(dropArea()));
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panelFiles().size(), 5);
    ASSERT_TRUE(waitFor([this] { return panelLength() == u"2m"_s; }));
    for (const QString &pipe : pipes)
        EXPECT_FALSE(somebodyReads(pipe)) << pipe.toStdString();
}

TEST_F(BadInput, AnEmptyFileIsTheEnginesToRefuse)
{
    const QString path = m_engine.recording(u"empty.wav"_s);
    m_engine.answer(u"process"_s, Answer::failure(1, "Error: The file is empty\n"));
    openWindow();
    ASSERT_NO_FATAL_FAILURE(dropAndStart({path}));
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    EXPECT_EQ(sheet()->text().message, u"Could not start “empty.wav”"_s);
    EXPECT_EQ(sheet()->text().detail, u"The file is empty"_s);
    EXPECT_EQ(processed(), QStringList{path});
}

} // namespace
