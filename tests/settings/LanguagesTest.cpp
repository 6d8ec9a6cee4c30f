// Every window in every language that the program ships: each text has the room it needs, none stands over another,
// and none is left in English.

#include "settings/SettingsTest.h"

#include "settings/AboutWindow.h"
#include "settings/L.h"
#include "ui/Painting.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::job;
using test::waitFor;

namespace {

constexpr auto models = R"({"custom":[{"id":"a","name":"Ada","kind":"parakeet","repo":"ada/p"},
                                      {"id":"b","name":"Ben","kind":"whisper","repo":"ben/w"}],
                            "text_model":"qwen3:8b","ollama_models":["gemma","llama"]})";
constexpr auto health = R"([{"check":"Engine","ok":true},{"check":"Recogniser","ok":false},
                            {"check":"Ollama","ok":false,"optional":true}])";

QString withoutBlanks(QString text)
{
    return text.remove(QRegularExpression(u"\\s"_s));
}

/// What a widget says, empty where it says nothing.
QString saidBy(const QWidget *widget)
{
    if (const auto *pill = qobject_cast<const PillButton *>(widget))
        return pill->title();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *menu = qobject_cast<const QComboBox *>(widget))
        return menu->currentText();
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return field->text().isEmpty() ? field->placeholderText() : field->text();
    return {};
}

/// Paths and names of the person's own.
bool mayBeShortened(const QWidget *widget)
{
    return widget->objectName() == u"setupList" || qobject_cast<const PathField *>(widget);
}

bool fits(const QWidget *widget)
{
    if (const auto *line = qobject_cast<const ElidedLabel *>(widget))
        return line->shownText() == onOneLine(line->text());
    if (const auto *lines = qobject_cast<const WrapLabel *>(widget))
        return withoutBlanks(lines->shownText()) == withoutBlanks(lines->text())
            && lines->height() >= lines->heightForWidth(lines->width());
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return field->fontMetrics().horizontalAdvance(saidBy(field)) <= field->width() - 8;
    if (widget->hasHeightForWidth())
        return widget->height() >= widget->heightForWidth(widget->width());
    return widget->width() >= widget->sizeHint().width();
}

class InLanguage : public test::SettingsTest, public testing::WithParamInterface<QString>
{
protected:
    void SetUp() override
    {
        SettingsTest::SetUp();
        m_engine.answer(u"models"_s, {models});
        m_engine.answer(u"doctor"_s, {health});
        ASSERT_EQ(LoadInterfaceTexts(m_table, GetParam()), GetParam());
        if (!m_table.isEmpty())
            QCoreApplication::installTranslator(&m_table);
        QLocale::setDefault(InterfaceLocale(GetParam(), QLocale::c()));
        QGuiApplication::setLayoutDirection(QLocale().textDirection());
        QDir().mkpath(QFileInfo(Defaults::userPath()).path());
        test::writeFile(Defaults::userPath(), "{\"AppleLanguages\":[\"" + GetParam().toUtf8() + "\"]}");
    }
    void TearDown() override
    {
        SettingsTest::TearDown();
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        QLocale::setDefault(m_former);
        QCoreApplication::removeTranslator(&m_table);
    }

    /// The texts of a window that want more room than they have, stand over another or are in English.
    QStringList faultsOf(const QWidget *window) const
    {
        QStringList faults;
        QList<const QWidget *> speakers;
        for (const QWidget *widget : window->findChildren<QWidget *>()) {
            if (!widget->isVisible() || widget->window() != window || saidBy(widget).isEmpty())
                continue;
            const QString said = widget->objectName() + u" says \""_s + saidBy(widget) + u'"';
            if (!mayBeShortened(widget) && !isDetailOf(m_givingWay, widget) && !fits(widget))
                faults.append(said + u" in too little room"_s);
            if (widget->visibleRegion().boundingRect().size() != widget->size())
                faults.append(said + u" out of sight"_s);
            if (isEnglish(saidBy(widget)))
                faults.append(said + u" in English"_s);
            for (const QWidget *other : std::as_const(speakers)) {
                if (!other->isAncestorOf(widget) && placeOf(other).intersects(placeOf(widget)))
                    faults.append(said + u" over \""_s + saidBy(other) + u'"');
            }
            speakers.append(widget);
        }
        EXPECT_FALSE(speakers.isEmpty());
        return faults;
    }
    /// The rows' line of detail ends where their buttons begin: what may be cut, is whole in its tip.
    static bool isDetailOf(const QStringList &keys, const QWidget *widget)
    {
        const auto *row = qobject_cast<const RowView *>(widget->parent());
        return row && widget == row->detail() && keys.contains(row->look().key);
    }
    bool isEnglish(const QString &said) const
    {
        const QString translation = m_table.texts().value(said);
        return !translation.isEmpty() && translation != said;
    }
    static QRect placeOf(const QWidget *widget)
    {
        return {widget->mapTo(widget->window(), QPoint()), widget->size()};
    }
    template <typename Window> Window *topLevel() const
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *window = qobject_cast<Window *>(widget); window && window->isVisible())
                return window;
        }
        return nullptr;
    }
    static Sheet *sheetOver(const QWidget *window)
    {
        for (auto *sheet : window->findChildren<Sheet *>()) {
            if (sheet->isVisible() && sheet->isActiveWindow())
                return sheet;
        }
        return nullptr;
    }
    QStringList faultsOfSheet(const QWidget *over) const
    {
        if (!waitFor([over] { return sheetOver(over) != nullptr; }))
            return {u"no sheet"_s};
        return faultsOf(sheetOver(over));
    }
    /// Looks at the sheet that the command brings, and puts it away.
    QStringList faultsAfter(const QString &key, const QString &action)
    {
        m_app->performOnRow(key, action);
        const QStringList faults = faultsOfSheet(window());
        sheet()->close();
        EXPECT_TRUE(sheetCloses());
        return faults;
    }
    void openWithEveryState()
    {
        QJsonObject russian = job(u"russian"_s, u"Talk"_s, u"ready"_s);
        russian.insert(u"recorded_at"_s, u"2025-03-14T10:22:33"_s);
        russian.insert(u"duration_seconds"_s, 5400);
        russian.insert(u"engine"_s, u"whisper"_s);
        russian.insert(u"language"_s, u"ru"_s);
        QJsonObject failed = job(u"failed"_s, u"Talk"_s, u"failed"_s);
        failed.insert(u"error"_s, u"Запис містить тишу"_s);
        m_engine.answerHistory(test::historyOf(
            {job(u"transcribing"_s, u"Talk"_s, u"transcribing"_s), job(u"analyzing"_s, u"Talk"_s, u"analyzing"_s),
             job(u"cleaning"_s, u"Talk"_s, u"cleaning"_s), job(u"queued"_s, u"Talk"_s, u"queued"_s),
             job(u"paused"_s, u"Talk"_s, u"transcribing"_s, true), russian, failed,
             job(u"cancelled"_s, u"Talk"_s, u"cancelled"_s)}));
        m_engine.answerStatus(R"({"latest_job":{"id":"transcribing","progress":"12/40"}})");
        ASSERT_NO_FATAL_FAILURE(openWindow());
        m_app->enqueue({m_engine.recording(u"memo.m4a"_s)}, m_choices);
        window()->resize(window()->width(), 1100);
        ASSERT_TRUE(waitFor([this] { return row(u"cancelled"_s) != nullptr; }));
    }

    const QLocale m_former;
    LocalTable m_table;
    QStringList m_givingWay{u"russian"_s}; ///< rows whose detail is too long in English too
};

TEST_P(InLanguage, TheListWithEveryState)
{
    ASSERT_NO_FATAL_FAILURE(openWithEveryState());
    EXPECT_EQ(faultsOf(window()), QStringList());
}

TEST_P(InLanguage, TheListInTheSmallestWindow)
{
    ASSERT_NO_FATAL_FAILURE(openWithEveryState());
    window()->resize(window()->minimumSize().width(), 1100);
    m_givingWay.append(u"cancelled"_s);
    EXPECT_EQ(faultsOf(window()), QStringList());
}

TEST_P(InLanguage, TheEmptyList)
{
    openWindow();
    EXPECT_EQ(faultsOf(window()), QStringList());
}

TEST_P(InLanguage, TheMenus)
{
    openWindow();
    QStringList english;
    for (const QAction *item : window()->findChildren<QAction *>()) {
        if (isEnglish(item->text()))
            english.append(item->text());
    }
    EXPECT_EQ(english, QStringList());
}

TEST_P(InLanguage, TheSheetsOfTheList)
{
    ASSERT_NO_FATAL_FAILURE(openWithEveryState());
    EXPECT_EQ(faultsAfter(u"russian"_s, u"renameRow"_s), QStringList());
    EXPECT_EQ(faultsAfter(u"russian"_s, u"removeRow"_s), QStringList());
    EXPECT_EQ(faultsAfter(u"transcribing"_s, u"cancelRow"_s), QStringList());
    m_app->clearList();
    EXPECT_EQ(faultsOfSheet(window()), QStringList());
    sheet()->answer(1); // Move to Trash asks once more for several
    ASSERT_TRUE(waitFor([this] { return sheet() && sheet()->text().buttons.size() == 2; }));
    EXPECT_EQ(faultsOfSheet(window()), QStringList());
}

TEST_P(InLanguage, ThePanel)
{
    openWindow();
    m_app->addFiles({QUrl::fromLocalFile(m_engine.recording(u"one.m4a"_s)), QUrl::fromLocalFile(m_engine.recording(u"two.m4a"_s))});
    ASSERT_TRUE(waitFor([this] { return panel() && panel()->isActiveWindow(); }));
    EXPECT_EQ(faultsOf(panel()), QStringList());
    auto *languages = panel()->findChild<PopUpButton *>(u"language"_s);
    for (const QString &code : {u"auto"_s, u"tr"_s, u"pl"_s}) {
        languages->setCurrentIndex(languages->findData(code));
        EXPECT_EQ(faultsOf(panel()), QStringList()) << code.toStdString();
    }
    languages->setCurrentIndex(languages->findData(u"ru"_s));
    EXPECT_EQ(faultsOfSheet(panel()), QStringList());
}

TEST_P(InLanguage, TheSettings)
{
    openSettings();
    ASSERT_TRUE(waitFor([this] { return part<QLabel>(u"healthLine"_s) && part<QPushButton>(u"removeModel.0"_s); }));
    for (const test::Tab tab : {test::General, test::Transcription, test::Storage, test::Models, test::Engine}) {
        settingsWindow()->showTab(tab);
        QCoreApplication::sendPostedEvents();
        EXPECT_EQ(faultsOf(settingsWindow()), QStringList()) << tab;
    }
    const auto *tabs = settingsWindow()->findChild<SettingsTabs *>();
    EXPECT_GE(tabs->width(), tabs->sizeHint().width());
    for (int tab = 0; tab < tabs->count(); ++tab)
        EXPECT_FALSE(isEnglish(tabs->accessibleTabName(tab)));
}

TEST_P(InLanguage, TheSheetsOfTheSettings)
{
    openTab(test::Models);
    ASSERT_TRUE(waitFor([this] { return part<QPushButton>(u"removeModel.0"_s) != nullptr; }));
    for (const QString &button : {u"addCustomModel"_s, u"removeModel.0"_s}) {
        test::click(part<QPushButton>(button));
        EXPECT_EQ(faultsOfSheet(settingsWindow()), QStringList());
        settingsSheet()->close();
        ASSERT_TRUE(settingsSheetCloses());
    }
    settingsWindow()->showTab(test::General);
    choose(u"AppleLanguages"_s, u"auto"_s);
    EXPECT_EQ(faultsOfSheet(settingsWindow()), QStringList());
}

TEST_P(InLanguage, About)
{
    openWindow();
    m_app->perform(u"showAbout"_s);
    const auto *about = topLevel<AboutWindow>();
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(faultsOf(about), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Languages, InLanguage, testing::ValuesIn(InterfaceLanguageCodes()),
                         [](const auto &language) { return QString(language.param).remove(u'-').toStdString(); });

} // namespace
