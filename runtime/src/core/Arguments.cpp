#include "core/Arguments.h"

#include "core/Failure.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

class Reader
{
public:
    Reader(const Syntax &syntax, const QStringList &given)
        : m_syntax(syntax)
        , m_given(given)
    {
    }

    Arguments read()
    {
        bool onlyWords = false;
        for (m_at = 0; m_at < m_given.size(); ++m_at) {
            const QString &argument = m_given.at(m_at);
            if (!onlyWords && argument == u"--")
                onlyWords = true;
            else if (!onlyWords && argument.startsWith(u"--"))
                readOption(argument);
            else
                m_result.words.append(argument);
        }
        if (m_result.words.size() < m_syntax.fewest)
            refuse(u"Something is missing."_s);
        if (m_syntax.most >= 0 && m_result.words.size() > m_syntax.most)
            refuse(u"“"_s + m_result.words.at(m_syntax.most) + u"” is one too many."_s);
        return m_result;
    }

private:
    [[noreturn]] void refuse(const QString &why) const
    {
        throw usageFailure(why + u" Usage: call "_s + m_syntax.usage.toString());
    }

    void readOption(const QString &argument)
    {
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = argument.left(equals);
        const auto option = std::ranges::find(m_syntax.options, name, [](const Option &o) { return o.name; });
        if (option == m_syntax.options.end())
            refuse(u"“"_s + name + u"” is not an option here."_s);
        if (m_result.options.contains(name))
            refuse(u"“"_s + name + u"” was given twice."_s);
        QString value;
        if (equals >= 0) {
            if (option->kind == Option::Flag)
                refuse(u"“"_s + name + u"” takes no value."_s);
            value = argument.mid(equals + 1);
        } else if (option->kind == Option::Value) {
            refuse(u"“"_s + name + u"” takes a value after “=”."_s);
        } else if (option->kind == Option::SeparateValue) {
            if (++m_at >= m_given.size())
                refuse(u"“"_s + name + u"” takes a value."_s);
            value = m_given.at(m_at);
        }
        m_result.options.insert(name, value);
    }

    const Syntax &m_syntax;
    const QStringList &m_given;
    qsizetype m_at = 0;
    Arguments m_result;
};

} // namespace

Arguments readArguments(const Syntax &syntax, const QStringList &given)
{
    return Reader(syntax, given).read();
}

} // namespace engine
