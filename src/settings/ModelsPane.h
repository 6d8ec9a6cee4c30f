#pragma once

#include "settings/ModelLines.h"
#include "settings/Tone.h"

#include <QWidget>

QT_BEGIN_NAMESPACE
class QVBoxLayout;
QT_END_NAMESPACE

namespace tuppi {

class PopUpButton;
class TextField;
class WrapLabel;

/// The speech models, and the text model that writes the summaries.
class ModelsPane : public QWidget
{
    Q_OBJECT
public:
    explicit ModelsPane(QWidget *parent = nullptr);

    void setModels(const ModelLines &lines);
    /// `current` may be empty: none is selected then.
    void setTextModels(const QStringList &names, const QString &current);
    void setStatus(const QString &text);
    void clearPullField();

Q_SIGNALS:
    void addRequested();
    /// Of the line with that index.
    void removeRequested(int index);
    void textModelChosen(const QString &name);
    /// What was typed as a text model's name, as it was typed.
    void pullRequested(const QString &typed);

private:
    QWidget *customLine(const CustomModelLine &line);
    void addSpeechModels(QVBoxLayout *column);
    void addTextModel(QVBoxLayout *column);

    QVBoxLayout *m_list = nullptr;  ///< the lines of speech models
    ModelLines m_lines;             ///< as they stand there
    QStringList m_textNames; ///< that the menu of text models shows
    QList<QWidget *> m_below;       ///< what takes keys below those lines
    PopUpButton *m_textModels = nullptr;
    TextField *m_pull = nullptr;
    WrapLabel *m_status = nullptr;
};

} // namespace tuppi
