#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

#include <sys/mount.h>

namespace tuppi::test {

/// A small drive of its own in a folder while the object lives; only an administrator can have one.
class Drive
{
public:
    Drive(const QString &path, int kilobytes)
        : m_path(QFile::encodeName(path))
    {
        QDir().mkpath(path);
        const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k,mode=0777";
        m_isMounted = ::mount("none", m_path.constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~Drive()
    {
        if (m_isMounted)
            ::umount2(m_path.constData(), MNT_DETACH);
    }
    Q_DISABLE_COPY(Drive)
    bool isMounted() const { return m_isMounted; }

private:
    QByteArray m_path;
    bool m_isMounted = false;
};

} // namespace tuppi::test
