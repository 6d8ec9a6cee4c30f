#pragma once

#include <QWidget>

namespace tuppi {

class ElidedLabel;
class PathField;

/// Where the transcripts are kept and how much room they take.
class StoragePane : public QWidget
{
    Q_OBJECT
public:
    explicit StoragePane(QWidget *parent = nullptr);

    void setLibrary(const QString &shown, const QString &path);
    void setSize(const QString &size);

Q_SIGNALS:
    /// "changeLibrary" or "openLibrary".
    void command(const QString &action);

private:
    PathField *m_path;
    ElidedLabel *m_size;
};

} // namespace tuppi
