#include "viewer/LoadWebViews.h"
#include "viewer/PageScripts.h"
#include "viewer/ViewerWindow.h"

#include <QApplication>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTextStream>

#include <iostream>

using namespace tuppi;
using namespace Qt::StringLiterals;

/// Opens a viewer window on each of the given pages, the first at once and one more for each line of its input.
/// Says when a page has been loaded.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QStringList pages = QApplication::arguments().mid(1);
    const LoadedWebViews loaded = LoadWebViews(Sandboxing::Required);
    if (!loaded.views)
        return 1;
    const auto openNext = [&] {
        const QString page = pages.takeFirst();
        const ResultPlan plan{QFileInfo(page).path(), page, false, u"Interview"_s};
        auto *window = new ViewerWindow(plan, *loaded.views, {viewerI18nScript({}, u"en"_s)});
        QObject::connect(window, &ViewerWindow::messagePosted, window,
                         [] { QTextStream(stdout) << "loaded" << Qt::endl; });
        window->show();
    };
    openNext();
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
        std::string line;
        if (std::getline(std::cin, line) && !pages.isEmpty())
            openNext();
        else
            QApplication::quit();
    });
    const int status = QApplication::exec();
    qDeleteAll(QApplication::topLevelWidgets());
    return status;
}
