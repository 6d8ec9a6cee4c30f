#include "list/RowLook.h"

#include "engine/Stages.h"
#include "settings/L.h"
#include "settings/Val.h"

namespace tuppi {

namespace {

struct PoseAndKind
{
    QString pose;
    bool animated;
};

QString text(const QJsonObject &row, QLatin1String key)
{
    return Val(row.value(key)).toString();
}

bool isPaused(const QJsonObject &row, const QString &status)
{
    return IsActiveStage(status) && Val(row.value(QLatin1String("paused"))).toVariant().toBool();
}

PoseAndKind poseFor(const QString &status, bool paused)
{
    if (status == QLatin1String("ready"))
        return {u"done"_qs, false};
    if (status == QLatin1String("failed"))
        return {u"oops"_qs, true};
    if (status == QLatin1String("cancelled"))
        return {u"oops"_qs, false};
    if (paused)
        return {u"waiting"_qs, false};
    if (status == QLatin1String("waiting"))
        return {u"waiting"_qs, true};
    if (status == QLatin1String("analyzing") || status == QLatin1String("cleaning"))
        return {u"writing"_qs, true};
    return {u"listening"_qs, IsActiveStage(status)};
}

RowButton pill(const QString &action, const QString &title, int style = 1)
{
    return {action, title, QString(), QString(), style, QString()};
}

RowButton icon(const QString &action, const QString &symbol, const QString &tip)
{
    return {action, QString(), symbol, tip, 1, QString()};
}

/// Texts in English, still to be looked up.
QList<RowButton> buttonsFor(const QString &status, bool paused)
{
    const RowButton trash = icon(u"removeRow"_qs, u"trash"_qs, LText(u"Remove…"_qs));
    if (status == QLatin1String("ready"))
        return {pill(u"openRowViewer"_qs, LText(u"Open"_qs), 0), pill(u"openRowText"_qs, LText(u"Summary"_qs)),
                pill(u"copyRowText"_qs, LText(u"Copy Text"_qs)),
                icon(u"showRowInFinder"_qs, u"folder"_qs, LText(u"Show in Finder"_qs)), trash};
    if (status == QLatin1String("failed"))
        return {pill(u"retryRow"_qs, LText(u"Try Again"_qs)), trash};
    if (status == QLatin1String("cancelled"))
        return {pill(u"retryRow"_qs, LText(u"Start Again"_qs)), trash};
    if (IsActiveStage(status))
        return {paused ? pill(u"resumeRow"_qs, LText(u"Resume"_qs)) : pill(u"pauseRow"_qs, LText(u"Pause"_qs)),
                pill(u"cancelRow"_qs, LText(u"Cancel"_qs), 2)};
    if (status == QLatin1String("waiting"))
        return {pill(u"removeWaiting"_qs, LText(u"Remove"_qs))};
    return {};
}

QList<RowButton> localised(QList<RowButton> buttons, const QString &rowTitle, const Localise &localise)
{
    for (RowButton &button : buttons) {
        button.title = localise(button.title);
        button.tip = localise(button.tip);
        const bool named = !button.symbol.isEmpty() && !button.tip.isEmpty();
        // Put together by hand: filled into a format, a title holding "%1" would be taken for a place.
        button.accessibleName = (named ? button.tip : button.title) + u" — "_qs + rowTitle;
    }
    return buttons;
}

} // namespace

DetailTone DetailToneFor(const QString &status)
{
    if (status == QLatin1String("failed"))
        return DetailTone::Attention;
    return status == QLatin1String("ready") ? DetailTone::Good : DetailTone::Slate;
}

QString MascotKey(const QJsonObject &row, const QString &pose)
{
    QString key = text(row, QLatin1String("id"));
    if (key.isEmpty()) {
        const QString place = Val(row.value(QLatin1String("waitIndex"))).toVariant().toString();
        key = u"local-"_qs + place + u'-' + text(row, QLatin1String("title"));
    }
    return key + u'|' + pose;
}

RowLook RowLookFor(const QJsonObject &row, const QString &key, const QString &detail, double progress,
                   const Localise &localise)
{
    const QString status = text(row, QLatin1String("status"));
    const QString title = text(row, QLatin1String("title"));
    const bool titled = Val(row.value(QLatin1String("title"))).isString();
    const bool paused = isPaused(row, status);
    const PoseAndKind mascot = poseFor(status, paused);

    RowLook look;
    look.key = key;
    look.title = titled ? title : localise(LText(u"Recording"_qs));
    look.detail = detail;
    look.tone = DetailToneFor(status);
    if (text(row, QLatin1String("language")) == QLatin1String("ru"))
        look.detailTip =
            localise(LText(u"Warning! This language is dangerous and can cause war! Use it on your own risk"_qs));
    look.progress = progress;
    look.pose = mascot.pose;
    look.animated = mascot.animated;
    look.mascotKey = mascot.animated ? MascotKey(row, mascot.pose) : QString();
    look.buttons = localised(buttonsFor(status, paused), title, localise);
    look.activeCard = IsActiveStage(status);
    look.accessibleName = title + u". "_qs + detail;
    return look;
}

} // namespace tuppi
