#pragma once

#include <QDesktopServices>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>

namespace tuppi::test {

/// Stands where the desktop would open files and folders, and writes them down.
class Openings : public QObject
{
    Q_OBJECT
public:
    Openings() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~Openings() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QStringList paths;

public Q_SLOTS:
    void open(const QUrl &url) { paths.append(url.toLocalFile()); }
};

} // namespace tuppi::test
