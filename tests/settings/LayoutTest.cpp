// Every pane in other languages: nothing is cut, rows stand on one line, everything is mirrored.

#include "settings/SettingsTest.h"

#include "panel/LongTexts.h"
#include "settings/BaselineForm.h"

#include <QTranslator>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

/// Every text in another script, as long as it was.
class OtherScript : public QTranslator
{
public:
    explicit OtherScript(const QString &word)
        : m_word(word)
    {
    }
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *source, const char *, int) const override
    {
        QString text;
        while (text.size() < QString::fromUtf8(source).size())
            text += m_word + u' ';
        return text.trimmed();
    }

private:
    QString m_word;
};

struct Script
{
    const char *name;
    std::shared_ptr<QTranslator> translator;
    bool mirrored = false;
};

class Layout : public test::SettingsTest, public testing::WithParamInterface<Script>
{
protected:
    void SetUp() override
    {
        SettingsTest::SetUp();
        if (GetParam().translator)
            QCoreApplication::installTranslator(GetParam().translator.get());
        QGuiApplication::setLayoutDirection(GetParam().mirrored ? Qt::RightToLeft : Qt::LeftToRight);
        m_engine.answer(u"doctor"_s, {R"([{"check":"Engine","ok":true},{"check":"Ollama","ok":false,"optional":true}])"});
        m_engine.answer(u"models"_s, {R"({"custom":[{"id":"a","name":"Ada","repo":"ada/p"}],"text_model":"q"})"});
    }
    void TearDown() override
    {
        SettingsTest::TearDown();
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        if (GetParam().translator)
            QCoreApplication::removeTranslator(GetParam().translator.get());
    }
    void openFilled()
    {
        openSettings();
        ASSERT_TRUE(waitFor([this] {
            return part<QLabel>(u"healthLine"_s) && part<QPushButton>(u"removeModel.0"_s);
        }));
    }
    static QRect placeOf(const QWidget *widget)
    {
        return {widget->mapTo(widget->window(), QPoint()), widget->size()};
    }
};

TEST_P(Layout, NothingIsCutOnAnyPane)
{
    openFilled();
    for (int tab = 0; tab < 5; ++tab) {
        settingsWindow()->showTab(tab);
        QCoreApplication::sendPostedEvents();
        for (const QWidget *widget : settingsWindow()->findChildren<QWidget *>()) {
            if (!widget->isVisible())
                continue;
            const std::string name = GetParam().name + (u": "_s + widget->objectName()).toStdString();
            const QRect place = placeOf(widget);
            const bool says = qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLabel *>(widget)
                || qobject_cast<const QComboBox *>(widget);
            if (!says)
                continue;
            EXPECT_GE(place.left(), 0) << name;
            EXPECT_LT(place.right(), settingsWindow()->width()) << name;
            if (const auto *line = qobject_cast<const ElidedLabel *>(widget)) {
                EXPECT_GE(line->width() + 1, line->sizeHint().width()) << name << line->text().toStdString();
            } else if (widget->hasHeightForWidth()) {
                EXPECT_GE(widget->height(), widget->heightForWidth(widget->width())) << name;
            } else {
                EXPECT_GE(widget->width(), widget->sizeHint().width()) << name;
            }
        }
    }
}

TEST_P(Layout, TheTextsOfARowStandOnOneLine)
{
    openFilled();
    int rows = 0;
    for (int tab = 0; tab < 3; ++tab) {
        settingsWindow()->showTab(tab);
        QCoreApplication::sendPostedEvents();
        for (const BaselineForm *form : settingsWindow()->findChildren<BaselineForm *>()) {
            for (int item = 0; item + 1 < form->count(); ++item) {
                const auto *label = qobject_cast<const QLabel *>(form->itemAt(item)->widget());
                const QWidget *control = form->itemAt(item + 1)->widget();
                if (!label || label->buddy() != control || !control->isVisible())
                    continue;
                EXPECT_EQ(placeOf(label).top() + FirstBaseline(label), placeOf(control).top() + FirstBaseline(control))
                    << label->text().toStdString();
                ++rows;
            }
        }
    }
    EXPECT_EQ(rows, 11);
}

TEST_P(Layout, LabelsStandAtTheLeadingEdgeAndControlsInOneColumn)
{
    openFilled();
    const bool mirrored = GetParam().mirrored;
    const auto leading = [&](const QWidget *widget) {
        const QRect place = placeOf(widget);
        return mirrored ? settingsWindow()->width() - 1 - place.right() : place.left();
    };
    for (int tab = 0; tab < 2; ++tab) {
        settingsWindow()->showTab(tab);
        QCoreApplication::sendPostedEvents();
        QSet<int> controls;
        for (const QLabel *label : settingsWindow()->findChildren<QLabel *>()) {
            if (!label->isVisible() || !label->buddy())
                continue;
            EXPECT_EQ(leading(label), 32);
            controls.insert(leading(label->buddy()));
        }
        EXPECT_EQ(controls.size(), 1);
    }
}

TEST_P(Layout, TheWindowFitsItsPaneAndStaysAsWide)
{
    openFilled();
    const int width = settingsWindow()->width();
    EXPECT_GE(width, 560);
    for (int tab = 0; tab < 5; ++tab) {
        settingsWindow()->showTab(tab);
        EXPECT_EQ(settingsWindow()->width(), width);
        EXPECT_EQ(settingsWindow()->minimumSize(), settingsWindow()->maximumSize());
    }
}

INSTANTIATE_TEST_SUITE_P(Scripts, Layout,
                         testing::Values(Script{"english", nullptr}, Script{"englishMirrored", nullptr, true},
                                         Script{"long", std::make_shared<LongTexts>()},
                                         Script{"longMirrored", std::make_shared<LongTexts>(), true},
                                         Script{"arabic", std::make_shared<OtherScript>(u"إعدادات"_s), true},
                                         Script{"chinese", std::make_shared<OtherScript>(u"设置"_s)}),
                         test::caseName);

} // namespace
