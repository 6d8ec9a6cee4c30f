#pragma once

#include <QWidget>

namespace tuppi {

class PopUpButton;
class TextField;

/// What a new speech model is called, of which kind it is and where it comes from. The name has the keyboard first.
class AddModelForm : public QWidget
{
    Q_OBJECT
public:
    explicit AddModelForm(QWidget *parent = nullptr);

    // As typed.
    QString name() const;
    QString kind() const;  ///< "whisper" or "parakeet"
    QString repo() const;

private:
    TextField *m_name;
    PopUpButton *m_kind;
    TextField *m_repo;
};

} // namespace tuppi
