#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace engine {

// An option of a command. A value is taken from the same argument (--name=VALUE) or, for SeparateValue, from
// the next one (--engine VALUE) as well.
struct Option
{
    enum Kind { Flag, Value, SeparateValue };

    QStringView name; // with the dashes
    Kind kind = Flag;
};

// What a command takes.
struct Syntax
{
    QStringView usage; // shown after the program's name
    int fewest = 0;    // words that are not options
    int most = 0;      // -1: any number
    std::vector<Option> options;
};

// What a command was given.
struct Arguments
{
    QStringList words;
    QHash<QString, QString> options; // a flag has an empty value

    bool has(QStringView option) const { return options.contains(option.toString()); }
    QString value(QStringView option, const QString &otherwise = {}) const
    {
        return options.value(option.toString(), otherwise);
    }
};

// Sorts the arguments after the command's name. A lone "--" ends the options. Throws usageFailure.
Arguments readArguments(const Syntax &syntax, const QStringList &given);

} // namespace engine
