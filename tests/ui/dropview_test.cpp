#include "ui/Colours.h"
#include "ui/DropView.h"

#include "uitest.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QSignalSpy>

using namespace tuppi;

namespace {

struct DropViewTest : testing::Test
{
    DropView view;
    QMimeData data;
    QSignalSpy dropped{&view, &DropView::filesDropped};

    void SetUp() override { view.resize(400, 300); }

    static QList<QUrl> files(const QStringList &paths)
    {
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        return urls;
    }
    bool enter(Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction)
    {
        QDragEnterEvent event(QPoint(50, 50), actions, &data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(Qt::MoveAction);
        event.ignore();
        QCoreApplication::sendEvent(&view, &event);
        EXPECT_TRUE(!event.isAccepted() || event.dropAction() == Qt::CopyAction) << "never a move";
        return event.isAccepted();
    }
    bool move()
    {
        QDragMoveEvent event(QPoint(60, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }
    void leave()
    {
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(&view, &event);
    }
    bool drop()
    {
        enter(); // a drop that nothing led to is delivered to nobody
        QDropEvent event(QPointF(60, 50), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                         Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }
};

TEST_F(DropViewTest, takesADropAsQtDeliversIt)
{
    data.setUrls(files({u"/a.mp3"_qs}));
    EXPECT_TRUE(enter());
    QDropEvent event(QPointF(60, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(&view, &event);
    EXPECT_TRUE(event.isAccepted());
    EXPECT_EQ(dropped.size(), 1);
}

TEST_F(DropViewTest, takesTheRecordingsOfAMixedDrag)
{
    data.setUrls(files({u"/a/Interview.MP3"_qs, u"/a/notes.txt"_qs, u"/a/folder"_qs}));
    EXPECT_TRUE(enter());
    EXPECT_TRUE(view.isHighlighted());
    EXPECT_TRUE(move());
    EXPECT_TRUE(drop());
    EXPECT_FALSE(view.isHighlighted());
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped.at(0).at(0).value<QList<QUrl>>(), files({u"/a/Interview.MP3"_qs}));
}

TEST_F(DropViewTest, keepsTheOrderAndDuplicatesOfADrag)
{
    const QList<QUrl> urls = files({u"/b.mp3"_qs, u"/a.mp3"_qs, u"/b.mp3"_qs});
    data.setUrls(urls);
    EXPECT_TRUE(drop());
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped.at(0).at(0).value<QList<QUrl>>(), urls);
}

TEST_F(DropViewTest, refusesADragWithoutARecording)
{
    data.setUrls(files({u"/a/notes.txt"_qs}));
    EXPECT_FALSE(enter());
    EXPECT_FALSE(view.isHighlighted());
    EXPECT_FALSE(move());
    EXPECT_FALSE(drop());
    EXPECT_EQ(dropped.size(), 0);
}

TEST_F(DropViewTest, refusesTextAndPlacesElsewhere)
{
    data.setText(u"file:///a/b.mp3"_qs);
    EXPECT_FALSE(enter());
    data.clear();
    data.setUrls({QUrl(u"https://example.org/a.mp3"_qs), QUrl(u"smb://server/a.mp3"_qs)});
    EXPECT_FALSE(enter());
    EXPECT_FALSE(drop());
    data.clear();
    EXPECT_FALSE(enter());
    EXPECT_EQ(dropped.size(), 0);
}

TEST_F(DropViewTest, refusesADragThatWouldMoveTheFile)
{
    data.setUrls(files({u"/a.mp3"_qs}));
    EXPECT_FALSE(enter(Qt::MoveAction));
    EXPECT_FALSE(view.isHighlighted());
}

TEST_F(DropViewTest, leavingPutsTheLightOut)
{
    data.setUrls(files({u"/a.mp3"_qs}));
    enter();
    leave();
    EXPECT_FALSE(view.isHighlighted());
    EXPECT_FALSE(move());
    data.clear();
    data.setText(u"text"_qs);
    enter();
    EXPECT_FALSE(view.isHighlighted()) << "what the last drag carried is forgotten";
}

TEST_F(DropViewTest, takesFiveThousandFiles)
{
    QStringList paths;
    for (int i = 0; i < 5000; ++i)
        paths.append(u"/a/%1.ogg"_qs.arg(i));
    data.setUrls(files(paths));
    EXPECT_TRUE(enter());
    EXPECT_TRUE(drop());
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped.at(0).at(0).value<QList<QUrl>>().size(), 5000);
}

TEST_F(DropViewTest, theLightIsOutBeforeTheFilesArrive)
{
    data.setUrls(files({u"/a.mp3"_qs}));
    bool lit = true;
    QObject::connect(&view, &DropView::filesDropped, &view, [&] { lit = view.isHighlighted(); });
    enter();
    drop();
    EXPECT_FALSE(lit);
}

TEST_F(DropViewTest, drawsNothingAtRest)
{
    const QImage picture = pictureOf(view);
    EXPECT_EQ(picture.pixelColor(200, 150).alpha(), 0);
}

/// The colours met along the top edge of the card, clear of its corners.
QSet<QRgb> alongTheTop(const QImage &picture)
{
    QSet<QRgb> colours;
    for (int x = 60; x < 340; ++x)
        colours.insert(picture.pixel(x, 10));
    return colours;
}

TEST_F(DropViewTest, drawsADashedCardWhenAsked)
{
    view.setShowsCard(true);
    const QImage picture = pictureOf(view);
    EXPECT_COLOUR(picture.pixelColor(200, 150), Qt::white);
    EXPECT_EQ(picture.pixelColor(8, 150).alpha(), 0);
    EXPECT_EQ(picture.pixelColor(200, 4).alpha(), 0);
    const QSet<QRgb> top = alongTheTop(picture);
    EXPECT_TRUE(top.contains(qRgb(157, 189, 230))) << "a dash";
    EXPECT_TRUE(top.contains(qRgb(255, 255, 255))) << "a gap";
    EXPECT_EQ(picture.pixelColor(18 + 6, 10 + 6).alpha(), 0) << "a radius of 28";
}

TEST_F(DropViewTest, dashesAreTenOnSevenOff)
{
    view.setShowsCard(true);
    const QImage picture = pictureOf(view);
    const auto isDash = [&](int x) { return near(picture.pixelColor(x, 10), QColor(157, 189, 230)); };
    int begin = 60;
    while (isDash(begin))
        ++begin;
    while (!isDash(begin))
        ++begin;
    int end = begin;
    while (isDash(end))
        ++end;
    int next = end;
    while (!isDash(next))
        ++next;
    EXPECT_NEAR(next - begin, 17, 1);
    EXPECT_NEAR(end - begin, 10, 1);
}

TEST_F(DropViewTest, lightsUpUnderADrag)
{
    data.setUrls(files({u"/a.mp3"_qs}));
    enter();
    const QImage picture = pictureOf(view);
    EXPECT_COLOUR(picture.pixelColor(200, 150), QColor(238, 245, 255));
    EXPECT_TRUE(alongTheTop(picture).contains(qRgb(0, 87, 183)));
    leave();
    EXPECT_EQ(pictureOf(view).pixelColor(200, 150).alpha(), 0);
}

} // namespace
