#include "text/Tasks.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

// Lines as "Name: text"; one after another, five seconds each.
std::vector<Sentence> meeting(const QStringList &lines)
{
    std::vector<Sentence> sentences;
    for (const QString &line : lines) {
        const qint64 at = qint64(sentences.size()) * 5000;
        const qsizetype colon = line.indexOf(u": ");
        sentences.push_back({line.mid(colon < 0 ? 0 : colon + 2), at, at + 4000, false, line.left(std::max<qsizetype>(colon, 0))});
    }
    return sentences;
}

} // namespace

TEST(Tasks, ofAMeeting)
{
    const std::vector<Sentence> said = meeting({
        u"Speaker 1: Good morning everybody."_s,
        u"Speaker 1: Let's begin with the new office."_s,
        u"Speaker 2: The office was painted last week and it looks nice."_s,
        u"Speaker 2: I will order the desks by Wednesday."_s,
        u"Speaker 1: Can you also send me the invoice?"_s,
        u"Speaker 2: Yes, by the end of the week."_s,
        u"Speaker 3: I have to say the rooms are small."_s,
        u"Speaker 3: We don't have to move before June."_s,
        u"Speaker 1: Maria will talk to the landlord on Monday."_s,
        u"Speaker 3: The lift will be repaired in March."_s,
        u"Speaker 1: What should we do about the parking?"_s,
        u"Speaker 3: Somebody must call the city."_s,
        u"Speaker 2: We had to wait by the end of the road."_s,
        u"Speaker 1: Well, we'll see."_s,
        u"Speaker 1: Please remember to bring your keys."_s,
        u"Speaker 2: Thank you."_s,
    });
    EXPECT_EQ(extractTasks(said, u"en"_s),
              (QStringList{u"Speaker 1: Let's begin with the new office."_s,
                           u"Speaker 2: I will order the desks by Wednesday."_s,
                           u"Speaker 1: Can you also send me the invoice? Speaker 2: Yes, by the end of the week."_s,
                           u"Speaker 1: Maria will talk to the landlord on Monday."_s,
                           u"Speaker 3: Somebody must call the city."_s,
                           u"Speaker 1: Please remember to bring your keys."_s}));
}

TEST(Tasks, ofAnInterviewAreFew)
{
    EXPECT_EQ(extractTasks(meeting({u"Can you tell us how it began?"_s, u"I was born by the sea."_s,
                                    u"My mother had to work."_s, u"You must have been happy."_s,
                                    u"They will open a museum in September."_s, u"It will rain on Monday."_s,
                                    u"I would have to think about it."_s, u"I should have asked him."_s,
                                    u"I'm going to be honest with you."_s, u"Let's see what comes."_s,
                                    u"Yes please."_s, u"No, I will never go back there."_s}),
                           u"en"_s),
              QStringList());
}

struct TaskCase
{
    const char *language;
    const char *said;
    bool task;
};

void PrintTo(const TaskCase &one, std::ostream *out)
{
    *out << one.said;
}

class TaskLanguages : public testing::TestWithParam<TaskCase>
{
};

TEST_P(TaskLanguages, tellDuties)
{
    const auto [language, said, task] = GetParam();
    EXPECT_EQ(extractTasks(meeting({QString::fromUtf8(said)}), QString::fromUtf8(language)).size(), task ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, TaskLanguages,
    testing::Values(TaskCase{"de", "Wir müssen den Bericht bis Freitag schicken.", true},
                    TaskCase{"de", "Der Bericht war gestern fertig.", false},
                    TaskCase{"de", "Anna kümmert sich um das Licht.", true},
                    TaskCase{"de-DE", "Wann müssen wir los?", false},
                    TaskCase{"fr", "Il faut envoyer le rapport avant vendredi.", true},
                    TaskCase{"fr", "Le rapport est déjà parti.", false},
                    TaskCase{"es", "Tenemos que llamar a la ciudad mañana.", true},
                    TaskCase{"es", "La ciudad es muy grande.", false},
                    TaskCase{"it", "Dobbiamo chiamare Maria entro lunedì.", true},
                    TaskCase{"it", "Maria era molto contenta.", false},
                    TaskCase{"pt", "Precisamos enviar o texto até sexta.", true},
                    TaskCase{"nl", "Jan moet het rapport sturen.", true},
                    TaskCase{"pl", "Musimy wysłać raport do piątku.", true},
                    TaskCase{"ru", "Нужно отправить отчёт до пятницы.", true},
                    TaskCase{"ru", "Отчёт был готов вчера вечером.", false},
                    TaskCase{"uk", "Треба надіслати звіт до п'ятниці.", true},
                    TaskCase{"uk", "Звіт був готовий учора ввечері.", false},
                    TaskCase{"fi", "You must send the report by Friday.", false}));

TEST(Tasks, languagesWithoutRulesAreKnown)
{
    EXPECT_TRUE(tellsTasks(u"en_US"_s));
    EXPECT_TRUE(tellsTasks(u"uk"_s));
    EXPECT_FALSE(tellsTasks(u"fi"_s));
    EXPECT_FALSE(tellsTasks(u"auto"_s));
}

TEST(Tasks, ofVeryManyThoseWithADateAreKept)
{
    QStringList lines;
    for (int i = 0; i < 40; ++i)
        lines.append(i == 39 ? u"We must call number 39 on Monday."_s : u"We must call number %1."_s.arg(i));
    const QStringList tasks = extractTasks(meeting(lines), u"en"_s);
    ASSERT_EQ(tasks.size(), 20);
    EXPECT_EQ(tasks.first(), u"We must call number 0."_s);
    EXPECT_EQ(tasks.last(), lines.last());
}

} // namespace engine
