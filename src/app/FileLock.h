#pragma once

#include <QString>

namespace tuppi {

/// An exclusive lock on a file, held until the object dies. It ends with the process however that ends, and
/// a child that is given the descriptor (see RunOptions::keepOpen) holds it on until the child ends too.
class FileLock
{
public:
    explicit FileLock(const QString &path) : m_path(path) {}
    ~FileLock();
    Q_DISABLE_COPY(FileLock)

    enum class Result {
        Held,       ///< this object holds the lock
        Elsewhere,  ///< somebody else does
        Impossible, ///< the file cannot be made or locked here, so nobody can hold it
    };

    /// Takes the lock if nobody else has it. Creates the file. Never waits.
    Result tryLock();
    bool isHeld() const { return m_descriptor >= 0; }
    /// Closed on exec, -1 while not held. Owned by the lock.
    int descriptor() const { return m_descriptor; }

private:
    QString m_path;
    int m_descriptor = -1;
};

} // namespace tuppi
