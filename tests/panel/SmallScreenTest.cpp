// The New Transcription panel on a screen that is lower than the panel would like to be.

#include "PanelTools.h"

#include "ui/PillButton.h"

#include "support/Eventually.h"

#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

QRect placeIn(const QWidget &window, const QWidget *widget)
{
    return {widget->mapTo(&window, QPoint()), widget->size()};
}

} // namespace

class SmallScreenTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QCOMPARE(QGuiApplication::primaryScreen()->availableGeometry().height(), 520); }

    void staysOnTheScreenWithItsButtonsInSight_data()
    {
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::newRow("left to right") << Qt::LeftToRight;
        QTest::newRow("right to left") << Qt::RightToLeft;
    }

    void staysOnTheScreenWithItsButtonsInSight()
    {
        QFETCH(Qt::LayoutDirection, direction);
        OpenPanel open({u"auto"_s, u"en"_s, true, false}, 4);
        open.panel->setLayoutDirection(direction);
        open.panel->showTexts(TextsOfBatch(recordings(6), 0));
        QVERIFY(open.open());
        QVERIFY(open.panel->height() <= 520);
        QVERIFY(open.panel->height() > 440);
        for (const QString &name : {u"startButton"_s, u"cancelButton"_s}) {
            const auto *button = open.child<PillButton>(name);
            QVERIFY(open.panel->rect().contains(placeIn(*open.panel, button)));
            QVERIFY(!button->visibleRegion().isEmpty());
        }
        const auto *scroll = open.child<QScrollArea>(u"setupScroll"_s);
        QVERIFY(scroll->verticalScrollBar()->maximum() > 0);
        QCOMPARE(scroll->horizontalScrollBar()->maximum(), 0);
        // The bar takes its room from the margin.
        QCOMPARE(placeIn(*open.panel, open.child<QWidget>(u"model.auto"_s)).width(), 247);
        const QRect one = placeIn(*open.panel, open.child<QWidget>(u"model.auto"_s));
        const QRect two = placeIn(*open.panel, open.child<QWidget>(u"model.parakeet"_s));
        QCOMPARE(qMin(one.left(), two.left()), 28);
        QCOMPARE(560 - qMax(one.right(), two.right()) - 1, 28);
    }

    void tabBringsAControlIntoSight()
    {
        OpenPanel open({u"auto"_s, u"en"_s, true, false}, 4);
        open.panel->showTexts(TextsOfBatch(recordings(6), 0));
        QVERIFY(open.open());
        auto *quick = open.child<QWidget>(u"quick"_s);
        QVERIFY(quick->visibleRegion().isEmpty());
        for (int step = 0; step < 30 && !quick->hasFocus(); ++step)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(quick->hasFocus());
        QCOMPARE(quick->visibleRegion().boundingRect(), quick->rect());
    }

    void growsUpwardsWhereTheScreenEnds()
    {
        OpenPanel open;
        open.panel->showTexts(TextsOfBatch(recordings(1), 0));
        QVERIFY(open.open());
        open.panel->move(40, 300);
        open.panel->showTexts(TextsOfBatch(recordings(6), 0));
        EVENTUALLY_VERIFY(open.panel->frameGeometry().bottom() < 520);
        QVERIFY(open.panel->y() >= 0);
    }
};

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TUPPI_SMALL_SCREEN);
    QApplication app(argc, argv);
    SmallScreenTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SmallScreenTest.moc"
