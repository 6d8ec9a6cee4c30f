#pragma once

#include <QList>
#include <QStringList>
#include <QWidget>

QT_BEGIN_NAMESPACE
class QLabel;
class QVBoxLayout;
QT_END_NAMESPACE

namespace tuppi {

class ElidedLabel;
class LinkButton;

/// The names of a batch under each other, one line a file: a name that does not fit is shortened in the middle,
/// and line breaks in it become blanks. Gives way first when space is short.
class FileList : public QWidget
{
    Q_OBJECT
public:
    explicit FileList(QWidget *parent = nullptr);

    QStringList lines() const { return m_lines; }
    void setLines(const QStringList &lines);

private:
    QStringList m_lines;
    QList<ElidedLabel *> m_labels; ///< one for each line, the rest hidden
    QVBoxLayout *m_stack;
};

/// What the New Transcription panel knows of its files: names, total length, and the way to more of them.
class FileBox : public QWidget
{
    Q_OBJECT
public:
    explicit FileBox(QWidget *parent = nullptr);

    void setFiles(const QStringList &lines);
    void setLength(const QString &length);

    LinkButton *addMoreButton() const { return m_addMore; }

Q_SIGNALS:
    void addMoreRequested();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    FileList *m_list;
    QLabel *m_length;
    LinkButton *m_addMore;
};

} // namespace tuppi
