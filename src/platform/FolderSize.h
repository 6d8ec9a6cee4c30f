#pragma once

#include <QObject>
#include <QString>

QT_BEGIN_NAMESPACE
class QProcess;
QT_END_NAMESPACE

namespace tuppi {

/// Finds out how much room a folder takes, with `du`, which may take minutes and may never end. The last one asked for
/// counts: asked for another folder it drops the first, asked for the same one again it goes on. None is left running,
/// and none is waited for: one that is stuck in a dead file system does not end when it is killed.
class FolderSize : public QObject
{
    Q_OBJECT
public:
    explicit FolderSize(const QString &program = QStringLiteral("/usr/bin/du"), QObject *parent = nullptr);
    ~FolderSize() override;

    void measure(const QString &path);

Q_SIGNALS:
    /// What `du -sk` wrote about the folder asked for last; empty when it could not be run.
    void measured(const QString &path, const QByteArray &report);

private:
    void start();
    void drop();
    void ended();

    QString m_program;
    QString m_path; ///< asked for last
    QProcess *m_process = nullptr; ///< measures it; null once it has ended
};

} // namespace tuppi
