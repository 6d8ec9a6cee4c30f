// The New Transcription panel under hands: keys, wheel, drops, and the questions it asks.

#include "PanelTools.h"

#include "intake/ChooseFiles.h"
#include "intake/ConfirmRussian.h"
#include "ui/Sheet.h"
#include "ui/DropView.h"
#include "ui/ModelCard.h"
#include "ui/PillButton.h"
#include "ui/TickBox.h"

#include "support/Eventually.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QPointer>
#include <QWheelEvent>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

Sheet *warning(const QWidget &window)
{
    for (Sheet *sheet : window.findChildren<Sheet *>()) {
        if (sheet->isVisible())
            return sheet;
    }
    return nullptr;
}

void press(const Sheet *sheet, const QString &button)
{
    sheet->findChild<PillButton *>(button)->click();
}

/// Presses Tab until the control has the focus.
bool tabTo(const OpenPanel &open, const QWidget *target)
{
    for (int step = 0; step < 30 && QApplication::focusWidget() != target; ++step)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    return QApplication::focusWidget() == target && open.panel->isAncestorOf(target);
}

bool drop(QWidget *target, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent event(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
    return event.isAccepted();
}

} // namespace

class SetupPanelUseTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void refusedRussianGoesBack_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("Cancel") << 0;
        QTest::newRow("Escape") << int(Qt::Key_Escape);
        QTest::newRow("Return, which is for the default") << int(Qt::Key_Return);
    }

    void refusedRussianGoesBack()
    {
        QFETCH(int, key);
        OpenPanel open({u"auto"_s, u"pl"_s, true, false});
        QVERIFY(open.open());
        open.chooseLanguage(u"ru"_s);
        Sheet *sheet = warning(*open.panel);
        QVERIFY(sheet);
        QCOMPARE(sheet->windowModality(), Qt::WindowModal);
        QCOMPARE(open.panel->choices().language, u"pl"_s);
        if (key == 0) {
            press(sheet, u"sheetButton1"_s);
        } else {
            QVERIFY(QTest::qWaitForWindowActive(sheet));
            QTest::keyClick(sheet->focusWidget(), Qt::Key(key));
        }
        QVERIFY(!warning(*open.panel));
        QCOMPARE(open.language(), u"pl"_s);
        QCOMPARE(open.hint(), u"Polish will be transcribed with Whisper."_s);
        QCOMPARE(open.panel->choices().language, u"pl"_s);
        QCOMPARE(open.cancelled->count(), 0);
        QCOMPARE(open.started->count(), 0);
    }

    void acceptedRussianHoldsAndIsNotAskedAgain()
    {
        OpenPanel open;
        QVERIFY(open.open());
        open.chooseLanguage(u"ru"_s);
        QVERIFY(warning(*open.panel));
        press(warning(*open.panel), u"sheetButton0"_s);
        QCOMPARE(open.language(), u"ru"_s);
        QCOMPARE(open.panel->choices().language, u"ru"_s);
        QCOMPARE(open.hint(), u"Russian will be transcribed with Whisper."_s);

        Q_EMIT open.languages()->activated(open.languages()->currentIndex());
        open.chooseLanguage(u"ru"_s);
        QVERIFY(!warning(*open.panel));

        open.chooseLanguage(u"en"_s);
        QCOMPARE(open.panel->choices().language, u"en"_s);
        open.chooseLanguage(u"ru"_s);
        QVERIFY(warning(*open.panel));
    }

    void theWarningSaysWhatItMustInOrder()
    {
        QWidget window;
        window.show();
        QList<bool> answers;
        confirmRussianOn(&window, [&](bool accepted) { answers.append(accepted); });
        const QPointer<Sheet> sheet = warning(window);
        QVERIFY(sheet);
        QCOMPARE(sheet->accessibleName(),
                 u"Warning! This language is dangerous and can cause war! Use it on your own risk"_s);
        const QList<PillButton *> buttons = sheet->findChildren<PillButton *>();
        QCOMPARE(buttons.size(), 2);
        QCOMPARE(buttons[0]->title(), u"Use Russian"_s);
        QCOMPARE(buttons[1]->title(), u"Cancel"_s);
        QVERIFY(buttons[0]->x() < buttons[1]->x());
        QVERIFY(buttons[1]->isDefault());
        buttons[0]->click();
        buttons[0]->click();
        QCOMPARE(answers, QList<bool>{true});
        EVENTUALLY_VERIFY(!sheet);
    }

    void aWarningWhoseWindowGoesAnswersNobody()
    {
        bool answered = false;
        {
            QWidget window;
            window.show();
            confirmRussianOn(&window, [&](bool) { answered = true; });
            QVERIFY(warning(window));
        }
        QVERIFY(!answered);
    }

    void everyWayOfCancellingSaysSoOnceAndLeavesTheRestToTheOwner()
    {
        OpenPanel open;
        QVERIFY(open.open());
        QTest::keyClick(open.panel->focusWidget(), Qt::Key_Escape);
        QCOMPARE(open.cancelled->count(), 1);
        open.child<PillButton>(u"cancelButton"_s)->click();
        QCOMPARE(open.cancelled->count(), 2);
        open.panel->close();
        QCOMPARE(open.cancelled->count(), 3);
        QVERIFY(open.panel->isVisible());
        open.panel->done(QDialog::Accepted);
        QVERIFY(!open.panel->isVisible());
        QCOMPARE(open.cancelled->count(), 3);
        QCOMPARE(open.started->count(), 0);
    }

    void theWholeWayByKeysAlone()
    {
        OpenPanel open;
        open.panel->showTexts(TextsOfBatch(recordings(2), 0));
        QVERIFY(open.open());
        QVERIFY(tabTo(open, open.child<ModelCard>(u"model.parakeet"_s)));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(open.pickedModel(), u"parakeet"_s);
        QVERIFY(tabTo(open, open.languages()));
        QTest::keyClick(open.languages(), 't');
        QTest::keyClicks(open.languages()->view(), u"urk"_s);
        QCOMPARE(open.language(), u"en"_s);
        QTest::keyClick(open.languages()->view(), Qt::Key_Return);
        QCOMPARE(open.language(), u"tr"_s);
        QCOMPARE(open.hint(), u"Parakeet doesn't know Turkish, so Whisper will be used for this file."_s);
        QVERIFY(tabTo(open, open.child<TickBox>(u"speakers"_s)));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(open.started->count(), 0);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(open.started->count(), 1);
        const StartChoices choices = open.startedWith();
        QCOMPARE(choices.engine, u"parakeet"_s);
        QCOMPARE(choices.language, u"tr"_s);
        QVERIFY(!choices.speakers);
    }

    void tabVisitsEveryControlInReadingOrder()
    {
        OpenPanel open;
        QVERIFY(open.open());
        QStringList visited;
        for (int step = 0; step < 10; ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            visited.append(QApplication::focusWidget()->objectName());
        }
        QCOMPARE(visited, QStringList({u"addMoreButton"_s, u"model.auto"_s, u"model.parakeet"_s, u"model.whisper"_s,
                                       u"model.whisper-large"_s, u"language"_s, u"speakers"_s, u"quick"_s,
                                       u"cancelButton"_s, u"startButton"_s}));
    }

    void theListOfLanguagesIsOpenedWalkedAndChosenByKeys()
    {
        OpenPanel open;
        QVERIFY(open.open());
        QVERIFY(tabTo(open, open.languages()));
        QTest::keyClick(open.languages(), Qt::Key_Down);
        QAbstractItemView *list = open.languages()->view();
        EVENTUALLY_VERIFY(list->isVisible());
        // Nothing is chosen, and nothing asked, in passing.
        for (int step = 0; step < 30; ++step)
            QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(open.language(), u"en"_s);
        QVERIFY(!warning(*open.panel));
        QTest::keyClick(list, Qt::Key_Return);
        EVENTUALLY_VERIFY(!list->isVisible());
        QCOMPARE(open.language(), u"uk"_s);
        QCOMPARE(open.started->count(), 0);
    }

    void theWheelChoosesNoLanguage()
    {
        OpenPanel open;
        QVERIFY(open.open());
        open.languages()->setFocus();
        QWheelEvent turn(QPointF(5, 5), open.languages()->mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120),
                         Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(open.languages(), &turn);
        QCOMPARE(open.language(), u"en"_s);
    }

    void returnOnAButtonPressesThatButton()
    {
        OpenPanel open;
        QVERIFY(open.open());
        QVERIFY(tabTo(open, open.child<QPushButton>(u"addMoreButton"_s)));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(open.addMore->count(), 1);
        QVERIFY(tabTo(open, open.child<QPushButton>(u"cancelButton"_s)));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(open.cancelled->count(), 1);
        QCOMPARE(open.started->count(), 0);
    }

    void takesFilesDroppedAnywhereOnIt()
    {
        OpenPanel open;
        QVERIFY(open.open());
        auto *ground = open.panel->findChild<DropView *>();
        QCOMPARE(ground->size(), open.panel->size());
        for (const QWidget *child : ground->findChildren<QWidget *>())
            QVERIFY2(!child->acceptDrops(), qPrintable(child->objectName()));
        QVERIFY(drop(ground, {QUrl(u"file:///r/a.MP3"_s), QUrl(u"file:///r/notes.txt"_s), QUrl(u"file:///r/b.m4a"_s)}));
        QCOMPARE(open.dropped->count(), 1);
        QCOMPARE(open.dropped->first().first().value<QList<QUrl>>(),
                 QList<QUrl>({QUrl(u"file:///r/a.MP3"_s), QUrl(u"file:///r/b.m4a"_s)}));
        QVERIFY(!drop(ground, {QUrl(u"file:///r/notes.txt"_s)}));
        QCOMPARE(open.dropped->count(), 1);
    }

    void theFileDialogIsASheetForManyFiles()
    {
        QWidget window;
        window.show();
        const QPointer<QFileDialog> dialog = ChooseFilesDialog(&window);
        dialog->setOption(QFileDialog::DontUseNativeDialog);
        dialog->open();
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->windowModality(), Qt::WindowModal);
        QCOMPARE(dialog->parentWidget(), &window);
        QCOMPARE(dialog->windowTitle(), u"Choose audio files to transcribe"_s);
        QCOMPARE(dialog->labelText(QFileDialog::Accept), u"Add"_s);
        QCOMPARE(dialog->fileMode(), QFileDialog::ExistingFiles);
        QCOMPARE(dialog->nameFilters().size(), 1);
        dialog->reject();
        EVENTUALLY_VERIFY(!dialog);
    }
};

QTEST_MAIN(SetupPanelUseTest)
#include "SetupPanelUseTest.moc"
