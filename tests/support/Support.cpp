#include "support/Support.h"

#include "support/Eventually.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include <ostream>

namespace tuppi::test {

using namespace Qt::StringLiterals;

Environment::Environment(const char *name, const QByteArray &value)
    : m_name(name)
    , m_before(qgetenv(name))
{
    value.isNull() ? qunsetenv(name) : qputenv(name, value);
}

Environment::~Environment()
{
    m_before.isNull() ? qunsetenv(m_name) : qputenv(m_name, m_before);
}

HomeFolder::HomeFolder(const QString &path)
    : m_variables{{"HOME", QFile::encodeName(path)},
                  {"XDG_CONFIG_HOME", {}},
                  {"XDG_DATA_HOME", {}},
                  {"XDG_CACHE_HOME", {}},
                  {"XDG_STATE_HOME", {}}}
{
    QDir().mkpath(path);
}

bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, patience);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qUtf8Printable(path));
}

void replaceFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        qFatal("cannot replace %s", qUtf8Printable(path));
}

QJsonObject object(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        qFatal("no JSON object: %s", json.constData());
    return document.object();
}

QJsonArray array(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        qFatal("no JSON array: %s", json.constData());
    return document.array();
}

int openDescriptors()
{
    return int(QDir(u"/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size());
}

} // namespace tuppi::test

QT_BEGIN_NAMESPACE

void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << '"' << text.toStdString() << '"';
}

void PrintTo(const QByteArray &bytes, std::ostream *stream)
{
    *stream << '"' << bytes.left(2000).toStdString() << '"';
}

void PrintTo(const QVariant &value, std::ostream *stream)
{
    QString text;
    QDebug(&text) << value;
    *stream << text.toStdString();
}

void PrintTo(const QJsonObject &value, std::ostream *stream)
{
    PrintTo(QJsonDocument(value).toJson(QJsonDocument::Compact), stream);
}

QT_END_NAMESPACE
