#include "viewer/TextWindow.h"

#include "ui/Fonts.h"
#include "ui/Metrics.h"
#include "viewer/PageScripts.h"

#include <QPlainTextEdit>
#include <QTextOption>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

constexpr double textSize = 14;

/// The margins lie inside the scroll bar and are part of the paper.
class TextView : public QPlainTextEdit
{
public:
    TextView()
    {
        const int x = Metrics::resultTextInsetX, y = Metrics::resultTextInsetY;
        document()->setDocumentMargin(0);
        setViewportMargins(x, y, x, y);
    }
};

} // namespace

TextWindow::TextWindow(const ResultPlan &plan, const QString &text)
    : ResultWindow(plan)
    , m_text(new TextView)
{
    m_text->setObjectName(u"resultText"_s);
    m_text->setAccessibleName(plan.title);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setFont(System(textSize));
    // The view would put every line at the left edge, whichever way it runs.
    QTextOption option = m_text->document()->defaultTextOption();
    option.setAlignment((RunsFromTheRight(text) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute);
    m_text->document()->setDefaultTextOption(option);
    m_text->setPlainText(text);
    setContent(m_text);
}

void TextWindow::setZoom(double factor)
{
    m_text->setFont(System(textSize * factor));
}

} // namespace tuppi
