#include <QApplication>
#include <QLabel>

/// An empty window of the given width and height: the least that a Qt program with a window costs. With a third argument
/// that text stands in it, for which the system's fonts have to be found.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    QWidget window;
    window.resize(arguments.value(1).toInt(), arguments.value(2).toInt());
    if (arguments.size() > 3)
        new QLabel(arguments.at(3), &window);
    window.show();
    return QApplication::exec();
}
