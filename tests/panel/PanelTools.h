#pragma once

#include "intake/SetupPanel.h"
#include "ui/Mascots.h"
#include "ui/ModelCard.h"
#include "ui/MotionPolicy.h"
#include "ui/PopUpButton.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <memory>

/// A panel over a window of its own, and what it says.
class OpenPanel
{
public:
    explicit OpenPanel(const tuppi::StartChoices &stored = {QStringLiteral("auto"), QStringLiteral("en"), true, false},
                       int customModels = 0)
    {
        QJsonArray custom;
        for (int model = 1; model <= customModels; ++model)
            custom.append(QJsonObject{{QStringLiteral("id"), model}, {QStringLiteral("name"), QStringLiteral("Mine")}});
        tuppi::SetupOpening opening;
        opening.models = tuppi::allModels(custom);
        opening.languages = tuppi::Languages(QLocale(QStringLiteral("en")));
        opening.choices = stored;
        opening.interfaceLanguage = QStringLiteral("en");
        window.resize(900, 700);
        window.show();
        panel = std::make_unique<tuppi::SetupPanel>(opening, mascots, &window);
        started = std::make_unique<QSignalSpy>(panel.get(), &tuppi::SetupPanel::startRequested);
        cancelled = std::make_unique<QSignalSpy>(panel.get(), &tuppi::SetupPanel::cancelled);
        addMore = std::make_unique<QSignalSpy>(panel.get(), &tuppi::SetupPanel::addMoreRequested);
        dropped = std::make_unique<QSignalSpy>(panel.get(), &tuppi::SetupPanel::filesDropped);
    }

    bool open()
    {
        panel->open();
        return QTest::qWaitForWindowActive(panel.get());
    }

    template <class W>
    W *child(const QString &name) const
    {
        return panel->findChild<W *>(name);
    }

    tuppi::PopUpButton *languages() const { return child<tuppi::PopUpButton>(QStringLiteral("language")); }
    QString language() const { return languages()->currentData().toString(); }
    QString hint() const { return child<QLabel>(QStringLiteral("languageHint"))->text(); }
    void chooseLanguage(const QString &code) const { languages()->setCurrentIndex(languages()->findData(code)); }

    /// The id of the one picked card.
    QString pickedModel() const
    {
        QStringList picked;
        for (const tuppi::ModelCard *card : panel->findChildren<tuppi::ModelCard *>()) {
            if (card->isPicked())
                picked.append(card->engine());
        }
        return picked.join(QStringLiteral(", "));
    }

    tuppi::StartChoices startedWith() const { return started->last().first().value<tuppi::StartChoices>(); }

    tuppi::MotionPolicy motion;
    tuppi::Mascots mascots{motion};
    QWidget window;
    std::unique_ptr<tuppi::SetupPanel> panel;
    std::unique_ptr<QSignalSpy> started, cancelled, addMore, dropped;
};

inline QStringList recordings(int count)
{
    QStringList paths;
    for (int file = 1; file <= count; ++file)
        paths.append(QStringLiteral("/recordings/Voice memo %1.m4a").arg(file));
    return paths;
}
