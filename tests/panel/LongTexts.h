#pragma once

#include <QTranslator>

/// Every text half as long again, as some languages are.
class LongTexts : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *sourceText, const char *, int) const override
    {
        const QString text = QString::fromUtf8(sourceText);
        return text + QStringLiteral(" transkriptionsverfahren").left(2 + text.size() / 2);
    }
};
