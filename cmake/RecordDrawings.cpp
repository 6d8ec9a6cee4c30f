// Part of the build: records drawings (SVG) as what they paint, so that the program can show them sharp at any size
// without the library that reads them. "RecordDrawings FOLDER FILE…" writes FOLDER/NAME.pic for each NAME.svg.

#include <QFileInfo>
#include <QPainter>
#include <QPicture>
#include <QSvgRenderer>

#include <cstdio>

namespace {

bool record(const QString &drawing, const QString &picture)
{
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid())
        return false;
    QPicture recorded;
    recorded.setBoundingRect(QRect(QPoint(), renderer.viewBox().size()));
    QPainter painter(&recorded);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(recorded.boundingRect()));
    return painter.end() && recorded.save(picture);
}

} // namespace

int main(int argc, char *argv[])
{
    for (int index = 2; index < argc; ++index) {
        const QString drawing = QString::fromLocal8Bit(argv[index]);
        const QString picture = QString::fromLocal8Bit(argv[1]) + u'/' + QFileInfo(drawing).completeBaseName() + QStringLiteral(".pic");
        if (!record(drawing, picture)) {
            std::fprintf(stderr, "%s cannot be recorded as %s\n", qPrintable(drawing), qPrintable(picture));
            return 1;
        }
    }
    return 0;
}
