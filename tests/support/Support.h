#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <iosfwd>
#include <string>

namespace tuppi::test {

/// An environment variable set, or with a null value taken away, while the object lives.
class Environment
{
public:
    Environment(const char *name, const QByteArray &value);
    ~Environment();
    Q_DISABLE_COPY(Environment)

private:
    const char *m_name;
    QByteArray m_before;
};

/// Makes a folder the home of this process and of its children while the object lives.
class HomeFolder
{
public:
    explicit HomeFolder(const QString &path);
    Q_DISABLE_COPY(HomeFolder)

private:
    Environment m_variables[5];
};

/// Runs the event loop until the condition holds. False when it still does not after a minute.
bool waitFor(const std::function<bool()> &condition);

QByteArray readFile(const QString &path);
void writeFile(const QString &path, const QByteArray &bytes);
/// Writes beside and renames, so that a reader sees the old or the new bytes.
void replaceFile(const QString &path, const QByteArray &bytes);

/// The JSON value in a text; the test's own texts only.
QJsonObject object(const QByteArray &json);
QJsonArray array(const QByteArray &json);

/// Names the cases of a table after their `name`.
inline constexpr auto caseName = [](const auto &given) { return std::string(given.param.name); };

/// Open descriptors of this process.
int openDescriptors();

} // namespace tuppi::test

// How a failed comparison shows Qt's values.
QT_BEGIN_NAMESPACE
void PrintTo(const QString &text, std::ostream *stream);
void PrintTo(const QByteArray &bytes, std::ostream *stream);
void PrintTo(const QVariant &value, std::ostream *stream);
void PrintTo(const QJsonObject &value, std::ostream *stream);
QT_END_NAMESPACE
