#include "text/Hesitation.h"

#include "text/CleanText.h"
#include "text/WordParts.h"
#include "text/WordSieve.h"

#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// As recognisers write them. What is a word as well, such as German "um", Spanish "este" or Italian "eh", stays.
QSet<QString> soundsIn(const QString &language)
{
    static const QHash<QString, QString> lists{{u"de"_s, u"äh ähm ähhm öh öhm ehm hm hmm"_s},
                                               {u"fr"_s, u"euh euhm heu hum hmm"_s},
                                               {u"es"_s, u"ehm em mmm hmm"_s},
                                               {u"it"_s, u"ehm uhm mmm hmm"_s},
                                               {u"pt"_s, u"hum ahm hmm"_s},
                                               {u"nl"_s, u"uhm ehm euh hmm"_s},
                                               {u"pl"_s, u"yyy eee ehm hmm"_s},
                                               {u"sv"_s, u"öh öhm ehm hmm"_s},
                                               {u"da"_s, u"øh øhm øhh hmm"_s},
                                               {u"no"_s, u"øh øhm ehm hmm"_s},
                                               {u"fi"_s, u"öö ööh hmm"_s},
                                               {u"cs"_s, u"ehm hmm"_s},
                                               {u"ru"_s, u"э ээ эээ эм эмм ммм хм"_s},
                                               {u"uk"_s, u"ее еее ем емм ммм хм"_s}};
    const QStringList words = lists.value(mainLanguage(language)).split(u' ', Qt::SkipEmptyParts);
    return {words.begin(), words.end()};
}

} // namespace

std::vector<Word> withoutHesitation(std::vector<Word> words, const QString &language)
{
    const QSet<QString> sounds = soundsIn(language);
    if (sounds.isEmpty())
        return words;
    WordSieve sieve;
    for (Word &word : words) {
        if (sounds.contains(WordParts(word.text).key()))
            sieve.drop(word);
        else
            sieve.keep(std::move(word));
    }
    return sieve.take();
}

} // namespace engine
