// What the New Transcription panel shows, what it starts with, and how it is laid out.

#include "LongTexts.h"
#include "PanelTools.h"

#include "intake/FileBox.h"
#include "ui/ModelCard.h"
#include "ui/PillButton.h"
#include "ui/TickBox.h"

#include "support/Eventually.h"

#include <QAccessible>
#include <QApplication>
#include <QScrollArea>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

/// Counts what a widget is sent of one kind.
class EventCounter : public QObject
{
public:
    EventCounter(QObject *watched, QEvent::Type type)
        : m_type(type)
    {
        watched->installEventFilter(this);
    }
    int count = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        count += event->type() == m_type;
        return QObject::eventFilter(watched, event);
    }

private:
    QEvent::Type m_type;
};

} // namespace

class SetupPanelTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void opensAsASheetWithStartInFocus()
    {
        OpenPanel open;
        QVERIFY(open.open());
        QCOMPARE(open.panel->windowModality(), Qt::WindowModal);
        QCOMPARE(open.panel->windowTitle(), u"New Transcription"_s);
        QCOMPARE(open.panel->width(), 560);
        QCOMPARE(QApplication::focusWidget(), open.child<PillButton>(u"startButton"_s));
        QVERIFY(!(open.panel->windowFlags() & (Qt::WindowCloseButtonHint | Qt::WindowMinMaxButtonsHint)));
    }

    void opensWithTheStoredChoices()
    {
        const OpenPanel open({u"whisper"_s, u"pl"_s, false, true});
        QCOMPARE(open.pickedModel(), u"whisper"_s);
        QCOMPARE(open.language(), u"pl"_s);
        QVERIFY(!open.child<TickBox>(u"speakers"_s)->isChecked());
        QVERIFY(open.child<TickBox>(u"quick"_s)->isChecked());
        const StartChoices choices = open.panel->choices();
        QCOMPARE(choices.engine, u"whisper"_s);
        QCOMPARE(choices.language, u"pl"_s);
        QVERIFY(!choices.speakers);
        QVERIFY(choices.quick);
    }

    void neverOpensInRussian()
    {
        const OpenPanel open({u"auto"_s, u"ru"_s, true, false});
        QCOMPARE(open.language(), u"en"_s);
        QCOMPARE(open.hint(), u"The whole file is treated as English."_s);
        QCOMPARE(open.panel->choices().language, u"en"_s);
    }

    void opensInAutomaticForAnUnknownLanguage()
    {
        const OpenPanel open({u"auto"_s, u"xx"_s, true, false});
        QCOMPARE(open.languages()->currentIndex(), 0);
        QCOMPARE(open.panel->choices().language, u"auto"_s);
        QVERIFY(open.hint().startsWith(u"Tuppi recognizes Ukrainian and English"_s));
    }

    void opensWithTheFirstModelWhenTheStoredOneIsGone()
    {
        const OpenPanel open({u"custom:7"_s, u"en"_s, true, false}, 2);
        QCOMPARE(open.pickedModel(), u"auto"_s);
        QCOMPARE(open.panel->choices().engine, u"auto"_s);
    }

    void offersACardForEveryModelInOrder()
    {
        const OpenPanel open({u"custom:2"_s, u"en"_s, true, false}, 3);
        QStringList engines;
        for (const ModelCard *card : open.panel->findChildren<ModelCard *>())
            engines.append(card->engine());
        QCOMPARE(engines, QStringList({u"auto"_s, u"parakeet"_s, u"whisper"_s, u"whisper-large"_s, u"custom:1"_s,
                                       u"custom:2"_s, u"custom:3"_s}));
        QCOMPARE(open.pickedModel(), u"custom:2"_s);
    }

    void aClickOnACardPicksItAlone()
    {
        OpenPanel open({u"auto"_s, u"tr"_s, true, false});
        QVERIFY(open.open());
        QCOMPARE(open.hint(), u"Turkish will be transcribed with Whisper."_s);
        QTest::mouseClick(open.child<ModelCard>(u"model.parakeet"_s), Qt::LeftButton);
        QCOMPARE(open.pickedModel(), u"parakeet"_s);
        QCOMPARE(open.hint(), u"Parakeet doesn't know Turkish, so Whisper will be used for this file."_s);
        QCOMPARE(open.panel->choices().engine, u"parakeet"_s);
    }

    void showsItsBatch()
    {
        const OpenPanel open;
        open.panel->showTexts(TextsOfBatch(recordings(7), 3660));
        QCOMPARE(open.child<FileList>(u"setupList"_s)->lines(),
                 QStringList({u"Voice memo 1.m4a"_s, u"Voice memo 2.m4a"_s, u"Voice memo 3.m4a"_s,
                              u"Voice memo 4.m4a"_s, u"Voice memo 5.m4a"_s, u"and 2 more"_s}));
        QCOMPARE(open.child<QLabel>(u"setupDuration"_s)->text(), u"1h 1m"_s);
        QCOMPARE(open.child<PillButton>(u"startButton"_s)->title(), u"Start Transcription (7 files)"_s);
        open.panel->showTexts(TextsOfBatch(recordings(1), 0));
        QCOMPARE(open.child<FileList>(u"setupList"_s)->lines(), QStringList{u"Voice memo 1.m4a"_s});
        QCOMPARE(open.child<PillButton>(u"startButton"_s)->title(), u"Start Transcription"_s);
        EVENTUALLY_COMPARE(open.child<QLabel>(u"setupDuration"_s)->text(), QString());
    }

    void aNameIsOneLineWhateverIsInIt()
    {
        OpenPanel open;
        open.panel->showTexts(TextsOfBatch({u"/r/plain.m4a"_s}, 0));
        QVERIFY(open.open());
        const int plain = open.child<FileList>(u"setupList"_s)->height();
        open.panel->showTexts(TextsOfBatch({u"/r/two\nlines\r\nand <b>marks & more.m4a"_s}, 0));
        EVENTUALLY_VERIFY(open.child<FileList>(u"setupList"_s)->findChild<QLabel *>()->text().startsWith(u"two\nlines"_s));
        QCoreApplication::sendPostedEvents();
        QCOMPARE(open.child<FileList>(u"setupList"_s)->height(), plain);
    }

    void growsAndShrinksWithItsFiles()
    {
        OpenPanel open;
        open.panel->showTexts(TextsOfBatch(recordings(1), 0));
        QVERIFY(open.open());
        const int low = open.panel->height();
        open.panel->showTexts(TextsOfBatch(recordings(6), 0));
        EVENTUALLY_VERIFY(open.panel->height() > low + 5 * 14);
        QCOMPARE(open.child<QScrollArea>(u"setupScroll"_s)->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
        open.panel->showTexts(TextsOfBatch(recordings(1), 0));
        EVENTUALLY_COMPARE(open.panel->height(), low);
    }

    void thousandsOfLengthsCostAFewLayouts()
    {
        OpenPanel open;
        open.panel->showTexts(TextsOfBatch(recordings(5000), 0));
        QVERIFY(open.open());
        QCoreApplication::sendPostedEvents();
        QWidget *page = open.child<QScrollArea>(u"setupScroll"_s)->widget();
        EventCounter layouts(page, QEvent::LayoutRequest);
        const QStringList files = recordings(5000);
        for (int measured = 1; measured <= 5000; ++measured) {
            open.panel->showTexts(TextsOfBatch(files, measured * 60.0));
            QCoreApplication::sendPostedEvents();
        }
        QVERIFY2(layouts.count <= 3, qPrintable(QString::number(layouts.count)));
        EVENTUALLY_COMPARE(open.child<QLabel>(u"setupDuration"_s)->text(), u"83h 20m"_s);
    }

    void startGivesTheChoicesAsTheyStand()
    {
        OpenPanel open;
        QVERIFY(open.open());
        QTest::mouseClick(open.child<ModelCard>(u"model.whisper-large"_s), Qt::LeftButton);
        QTest::mouseClick(open.child<TickBox>(u"speakers"_s), Qt::LeftButton, {}, QPoint(8, 10));
        QTest::mouseClick(open.child<TickBox>(u"quick"_s), Qt::LeftButton, {}, QPoint(60, 10));
        open.chooseLanguage(u"uk"_s);
        QTest::mouseClick(open.child<PillButton>(u"startButton"_s), Qt::LeftButton);
        QCOMPARE(open.started->count(), 1);
        const StartChoices choices = open.startedWith();
        QCOMPARE(choices.engine, u"whisper-large"_s);
        QCOMPARE(choices.language, u"uk"_s);
        QVERIFY(!choices.speakers);
        QVERIFY(choices.quick);
        QCOMPARE(open.cancelled->count(), 0);
    }

    void mirrorsItselfForRightToLeft()
    {
        OpenPanel open;
        open.panel->setLayoutDirection(Qt::RightToLeft);
        open.panel->showTexts(TextsOfBatch(recordings(2), 60));
        QVERIFY(open.open());
        const auto left = [&](const QString &name) {
            const auto *widget = open.child<QWidget>(name);
            return widget->mapTo(open.panel.get(), QPoint()).x();
        };
        QVERIFY(left(u"startButton"_s) < left(u"cancelButton"_s));
        QCOMPARE(left(u"startButton"_s), 28);
        QVERIFY(left(u"model.parakeet"_s) < left(u"model.auto"_s));
        QVERIFY(left(u"addMoreButton"_s) < left(u"setupDuration"_s));
        QVERIFY(left(u"setupDuration"_s) < left(u"setupList"_s));
        QVERIFY(left(u"languageHint"_s) < left(u"language"_s));
    }

    void longTextsStayInside()
    {
        LongTexts longTexts;
        QVERIFY(QCoreApplication::installTranslator(&longTexts));
        OpenPanel open;
        open.panel->showTexts(TextsOfBatch(recordings(5000), 5000 * 3599.0));
        QVERIFY(open.open());
        QCOMPARE(open.panel->width(), 560);
        for (const QWidget *child : open.panel->findChildren<QWidget *>()) {
            const QRect place(child->mapTo(open.panel.get(), QPoint()), child->size());
            if (child->isVisible() && !child->isWindow())
                QVERIFY2(place.left() >= 0 && place.right() < 560, qPrintable(child->objectName()));
        }
        QVERIFY(open.child<FileList>(u"setupList"_s)->width() > 100);
        QCoreApplication::removeTranslator(&longTexts);
    }

    void everyControlHasANameForPeopleAndForTests()
    {
        OpenPanel open({u"auto"_s, u"en"_s, true, false}, 1);
        QVERIFY(open.open());
        int controls = 0;
        for (QWidget *child : open.panel->findChildren<QWidget *>()) {
            if (!child->isVisible() || child->isWindow() || !(child->focusPolicy() & Qt::TabFocus))
                continue;
            ++controls;
            QVERIFY2(!child->objectName().isEmpty(), child->metaObject()->className());
            QAccessibleInterface *access = QAccessible::queryAccessibleInterface(child);
            QVERIFY2(access && !access->text(QAccessible::Name).isEmpty(), qPrintable(child->objectName()));
            QVERIFY2(access->actionInterface() && !access->actionInterface()->actionNames().isEmpty(),
                     qPrintable(child->objectName()));
        }
        QCOMPARE(controls, 11);
        QAccessibleInterface *language = QAccessible::queryAccessibleInterface(open.languages());
        QCOMPARE(language->role(), QAccessible::ComboBox);
        const auto labels = language->relations(QAccessible::Label);
        QCOMPARE(labels.size(), 1);
        QCOMPARE(labels.first().first->text(QAccessible::Name), u"Language"_s);
        QCOMPARE(language->text(QAccessible::Value), u"English"_s);
    }
};

QTEST_MAIN(SetupPanelTest)
#include "SetupPanelTest.moc"
