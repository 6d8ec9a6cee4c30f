#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace {

/// A patch in a corner of the screen, from which the given files are dragged.
class DragSource : public QWidget
{
protected:
    void mousePressEvent(QMouseEvent *) override
    {
        auto *files = new QMimeData;
        QList<QUrl> urls;
        const QStringList paths = QApplication::arguments().mid(1);
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        files->setUrls(urls);
        auto *drag = new QDrag(this);
        drag->setMimeData(files);
        QPixmap nothing(1, 1); // a file manager's would stand before what is to be seen
        nothing.fill(Qt::transparent);
        drag->setPixmap(nothing);
        drag->exec(Qt::CopyAction);
    }
};

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    DragSource source;
    source.setGeometry(0, 0, 40, 40);
    source.show();
    return QApplication::exec();
}
