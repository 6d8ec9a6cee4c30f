#pragma once

#include <QJsonValue>
#include <QVariant>

namespace tuppi {

/// Turns a JSON null into an absent value and returns any other value unchanged, so that a field that
/// is null and a field that is missing are the same thing to every reader of the engine's replies.
inline QJsonValue Val(const QJsonValue &value)
{
    return value.isNull() ? QJsonValue(QJsonValue::Undefined) : value;
}

/// A field of the engine's replies as a truth value: a number other than 0 holds as true does.
inline bool IsTrue(const QJsonValue &value)
{
    return Val(value).toVariant().toBool();
}

/// Val() for a value of the defaults store.
inline QVariant Val(const QVariant &value)
{
    return value.isNull() ? QVariant() : value;
}

} // namespace tuppi
