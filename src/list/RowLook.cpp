#include "list/RowLook.h"

#include "engine/Stages.h"
#include "settings/L.h"
#include "settings/Val.h"

namespace tuppi {

namespace {

using namespace Qt::StringLiterals;

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
    return IsActiveStage(status) && IsTrue(row.value("paused"_L1));
}

PoseAndKind poseFor(const QString &status, bool paused)
{
    if (status == "ready"_L1)
        return {u"done"_s, false};
    if (status == "failed"_L1)
        return {u"oops"_s, true};
    if (status == "cancelled"_L1)
        return {u"oops"_s, false};
    if (paused)
        return {u"waiting"_s, false};
    if (status == "waiting"_L1)
        return {u"waiting"_s, true};
    if (status == "analyzing"_L1 || status == "cleaning"_L1)
        return {u"writing"_s, true};
    return {u"listening"_s, IsActiveStage(status)};
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
    const RowButton trash = icon(u"removeRow"_s, u"trash"_s, LText(u"Remove…"_s));
    if (status == "ready"_L1)
        return {pill(u"openRowViewer"_s, LText(u"Open"_s), 0), pill(u"openRowText"_s, LText(u"Summary"_s)),
                pill(u"copyRowText"_s, LText(u"Copy Text"_s)),
                icon(u"showRowInFinder"_s, u"folder"_s, LText(u"Show in Finder"_s)), trash};
    if (status == "failed"_L1)
        return {pill(u"retryRow"_s, LText(u"Try Again"_s)), trash};
    if (status == "cancelled"_L1)
        return {pill(u"retryRow"_s, LText(u"Start Again"_s)), trash};
    if (IsActiveStage(status))
        return {paused ? pill(u"resumeRow"_s, LText(u"Resume"_s)) : pill(u"pauseRow"_s, LText(u"Pause"_s)),
                pill(u"cancelRow"_s, LText(u"Cancel"_s), 2)};
    if (status == "waiting"_L1)
        return {pill(u"removeWaiting"_s, LText(u"Remove"_s))};
    return {};
}

QList<RowButton> localised(QList<RowButton> buttons, const QString &rowTitle, const Localise &localise)
{
    for (RowButton &button : buttons) {
        button.title = localise(button.title);
        button.tip = localise(button.tip);
        const bool named = !button.symbol.isEmpty() && !button.tip.isEmpty();
        // Put together by hand: filled into a format, a title holding "%1" would be taken for a place.
        button.accessibleName = (named ? button.tip : button.title) + u" — "_s + rowTitle;
    }
    return buttons;
}

} // namespace

DetailTone DetailToneFor(const QString &status)
{
    if (status == "failed"_L1)
        return DetailTone::Attention;
    return status == "ready"_L1 ? DetailTone::Good : DetailTone::Slate;
}

QString MascotKey(const QJsonObject &row, const QString &pose)
{
    QString key = text(row, "id"_L1);
    if (key.isEmpty()) {
        const QString place = Val(row.value("waitIndex"_L1)).toVariant().toString();
        key = u"local-"_s + place + u'-' + text(row, "title"_L1);
    }
    return key + u'|' + pose;
}

RowLook RowLookFor(const QJsonObject &row, const QString &key, const QString &detail, double progress,
                   const Localise &localise)
{
    const QString status = text(row, "status"_L1);
    const QString title = text(row, "title"_L1);
    const bool titled = Val(row.value("title"_L1)).isString();
    const bool paused = isPaused(row, status);
    const PoseAndKind mascot = poseFor(status, paused);

    RowLook look;
    look.key = key;
    look.title = titled ? title : localise(LText(u"Recording"_s));
    look.detail = detail;
    look.tone = DetailToneFor(status);
    if (text(row, "language"_L1) == "ru"_L1)
        look.detailTip =
            localise(LText(u"Warning! This language is dangerous and can cause war! Use it on your own risk"_s));
    look.progress = progress;
    look.pose = mascot.pose;
    look.animated = mascot.animated;
    look.mascotKey = mascot.animated ? MascotKey(row, mascot.pose) : QString();
    look.buttons = localised(buttonsFor(status, paused), title, localise);
    look.activeCard = IsActiveStage(status);
    look.accessibleName = title + u". "_s + detail;
    return look;
}

} // namespace tuppi
