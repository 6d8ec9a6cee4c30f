#include "export/ShareChoices.h"

#include "settings/L.h"

namespace tuppi {

using namespace Qt::StringLiterals;

QList<ShareChoice> ShareChoices(const ShareOffers &offers)
{
    QList<ShareChoice> choices;
    if (offers.email)
        choices.append(ShareChoice::Email);
    if (offers.chooser)
        choices.append(ShareChoice::OpenWith);
    else if (offers.openers)
        choices.append(ShareChoice::Open);
    return choices << ShareChoice::CopyFile << ShareChoice::Reveal;
}

QString ShareTitle(ShareChoice choice)
{
    switch (choice) {
    case ShareChoice::Email:
        return L(u"Send by Email…"_s);
    case ShareChoice::OpenWith:
        return L(u"Open With…"_s);
    case ShareChoice::Open:
        return L(u"Open"_s);
    case ShareChoice::CopyFile:
        return L(u"Copy File"_s);
    case ShareChoice::Reveal:
        return L(u"Show in Finder"_s);
    }
    return {};
}

} // namespace tuppi
