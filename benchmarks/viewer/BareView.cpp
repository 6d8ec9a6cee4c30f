#include <QApplication>
#include <QTextStream>
#include <QUrl>
#include <QWebEngineView>

/// A web view of 900 × 720 with the given page: the least that such a page costs. Says when the page has been loaded.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QWebEngineView view;
    view.resize(900, 720);
    QObject::connect(&view, &QWebEngineView::titleChanged, &view, [](const QString &title) {
        if (title == QLatin1String("loaded"))
            QTextStream(stdout) << "loaded" << Qt::endl;
    });
    view.load(QUrl::fromLocalFile(QApplication::arguments().value(1)));
    view.show();
    return QApplication::exec();
}
