#include "settings/SettingsTest.h"

#include <QAbstractItemView>
#include <QTest>

namespace tuppi::test {

using namespace Qt::StringLiterals;

void SettingsTest::SetUp()
{
    m_engine.answer(u"settings"_s, {R"({"library":null})"});
    m_engine.answer(u"doctor"_s, {"[]"});
}

void SettingsTest::openSettings()
{
    openWindow();
    m_app->perform(u"showSettings"_s);
    ASSERT_NE(settingsWindow(), nullptr);
    settingsWindow()->activateWindow();
    ASSERT_TRUE(waitFor([this] { return settingsWindow()->isActiveWindow(); }));
}

void SettingsTest::openTab(Tab tab)
{
    openSettings();
    settingsWindow()->showTab(tab);
}

SettingsWindow *SettingsTest::settingsWindow() const
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *window = qobject_cast<SettingsWindow *>(widget))
            return window;
    }
    return nullptr;
}

bool SettingsTest::says(const QString &name, const QString &expected) const
{
    return waitFor([&] { return text(name) == expected; });
}

QStringList SettingsTest::itemsOf(const QString &name) const
{
    QStringList items;
    for (int item = 0; item < menu(name)->count(); ++item)
        items.append(menu(name)->itemData(item).isValid() ? menu(name)->itemText(item) : u"-"_s);
    return items;
}

void SettingsTest::choose(const QString &name, const QString &value) const
{
    const int item = menu(name)->findData(value);
    ASSERT_GE(item, 0) << qPrintable(value);
    ASSERT_TRUE(menu(name)->isVisible() && menu(name)->isEnabled()) << qPrintable(name);
    QTest::keyClick(menu(name), Qt::Key_Space);
    QAbstractItemView *list = menu(name)->view();
    ASSERT_TRUE(waitFor([list] { return list->isVisible(); }));
    QTest::keyClick(list, Qt::Key_Home);
    for (int step = 0; step < menu(name)->count() && list->currentIndex().row() != item; ++step)
        QTest::keyClick(list, Qt::Key_Down);
    ASSERT_EQ(list->currentIndex().row(), item);
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_TRUE(waitFor([list] { return !list->isVisible(); }));
}

Sheet *SettingsTest::settingsSheet() const
{
    for (Sheet *sheet : settingsWindow()->findChildren<Sheet *>()) {
        if (sheet->isVisible())
            return sheet;
    }
    return nullptr;
}

bool SettingsTest::settingsSheetOpens() const
{
    return waitFor([this] { return settingsSheet() && settingsSheet()->isActiveWindow(); });
}

bool SettingsTest::settingsSheetCloses() const
{
    return waitFor([this] { return settingsWindow()->findChild<Sheet *>() == nullptr; });
}

QString SettingsTest::sheetSays() const
{
    const SheetText &text = settingsSheet()->text();
    return (QStringList{text.message, text.detail} + text.buttons).join(u'|');
}

} // namespace tuppi::test
