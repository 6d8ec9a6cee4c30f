#include <QApplication>
#include <QWidget>

/// An empty window of the given width and height: the least that a Qt program with a window costs.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    QWidget window;
    window.resize(arguments.value(1).toInt(), arguments.value(2).toInt());
    window.show();
    return QApplication::exec();
}
