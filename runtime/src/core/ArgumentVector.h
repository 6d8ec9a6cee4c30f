#pragma once

#include <QFile>
#include <QStringList>

#include <vector>

namespace engine {

// A program and its arguments as execv() takes them. Made before a fork: a child may allocate nothing.
class ArgumentVector
{
public:
    explicit ArgumentVector(const QString &program, const QStringList &arguments = {})
    {
        m_texts.push_back(QFile::encodeName(program));
        for (const QString &argument : arguments)
            m_texts.push_back(QFile::encodeName(argument));
        for (QByteArray &text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
    }
    ArgumentVector(const ArgumentVector &) = delete;
    ArgumentVector &operator=(const ArgumentVector &) = delete;

    const char *program() const { return m_pointers.front(); }
    char *const *arguments() const { return m_pointers.data(); }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char *> m_pointers;
};

} // namespace engine
