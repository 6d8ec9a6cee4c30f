#include "ui/Appearance.h"

#include <QApplication>
#include <QLocale>

#include <gtest/gtest.h>

int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "C.UTF-8");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // No desktop is asked for its wishes, and none is kept awake.
    for (const char *bus : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(bus, "unix:path=/nonexistent/bus");
    qputenv("PULSE_SERVER", "unix:/nonexistent/sound"); // and nobody hears a cat
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QLocale::setDefault(QLocale(QLocale::English));
    tuppi::applyAppearance(application);
    return RUN_ALL_TESTS();
}
