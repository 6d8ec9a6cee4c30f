#pragma once

#include "viewer/ResultWindow.h"

class QPlainTextEdit;

namespace tuppi {

/// A transcript as plain text that can be selected but not changed.
class TextWindow : public ResultWindow
{
    Q_OBJECT
public:
    TextWindow(const ResultPlan &plan, const QString &text);

protected:
    void setZoom(double factor) override;

private:
    QPlainTextEdit *m_text;
};

} // namespace tuppi
