#include <QCoreApplication>

#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "C.UTF-8");
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
