#include "models/Ollama.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

TEST(OllamaAddress, isOnThisComputer)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {u""_s, u"http://127.0.0.1:11434"_s},
        {u"  "_s, u"http://127.0.0.1:11434"_s},
        {u"127.0.0.1"_s, u"http://127.0.0.1:11434"_s},
        {u"127.0.0.1:80"_s, u"http://127.0.0.1:80"_s},
        {u"127.1.2.3:5000"_s, u"http://127.1.2.3:5000"_s},
        {u"localhost"_s, u"http://127.0.0.1:11434"_s},
        {u"LocalHost:1234"_s, u"http://127.0.0.1:1234"_s},
        {u":1234"_s, u"http://127.0.0.1:1234"_s},
        {u"0.0.0.0"_s, u"http://127.0.0.1:11434"_s},
        {u"0.0.0.0:99999"_s, u"http://127.0.0.1:11434"_s},
        {u"http://127.0.0.1"_s, u"http://127.0.0.1:80"_s},
        {u"http://localhost:11434/"_s, u"http://127.0.0.1:11434"_s},
        {u"http://127.0.0.1:11434/behind/"_s, u"http://127.0.0.1:11434/behind"_s},
        {u"[::1]"_s, u"http://[::1]:11434"_s},
        {u"[::1]:77"_s, u"http://[::1]:77"_s},
        {u"::1"_s, u"http://[::1]:11434"_s},
        {u"[::]:77"_s, u"http://[::1]:77"_s},
    };
    for (const auto &[host, address] : cases)
        EXPECT_EQ(ollamaAddress(host), address) << host.toStdString();
}

TEST(OllamaAddress, isNothingElsewhere)
{
    for (const QString &host :
         {u"192.168.1.5"_s, u"example.org"_s, u"127.0.0.1.example.org"_s, u"localhost.example.org:80"_s,
          u"127.0.0.1@example.org"_s, u"user@127.0.0.1"_s, u"https://127.0.0.1"_s, u"ftp://127.0.0.1"_s,
          u"[2001:db8::1]:11434"_s, u"[::ffff:192.0.2.1]"_s, u"127.0.0.1#example.org"_s, u"127.0.0.1 x"_s,
          u"127.0.0.1:80@example.org"_s, u"1270.0.0.1"_s})
        EXPECT_EQ(ollamaAddress(host), std::nullopt) << host.toStdString();
}

} // namespace engine
