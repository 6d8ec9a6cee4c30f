#include "app/GoneFiles.h"

#include "support/Support.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <future>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

constexpr std::chrono::minutes limit(1);

TEST(GoneFiles, AreThoseThatAreNotThere)
{
    const QTemporaryDir folder;
    const QString there = folder.filePath(u"a.m4a"_s);
    const QString gone = folder.filePath(u"b.m4a"_s);
    test::writeFile(there, "a");
    EXPECT_EQ(GoneFiles({there, gone}), QSet<QString>{gone});
    EXPECT_EQ(GoneFiles({there}), QSet<QString>());
    EXPECT_EQ(GoneFiles({}), QSet<QString>());
}

TEST(GoneFiles, WhatADeadDiskDoesNotTellIsTakenToBeThere)
{
    std::promise<void> disk;
    const std::shared_future<void> answer = disk.get_future().share();
    const auto exists = [answer](const QString &path) {
        if (path == u"/dead"_s)
            answer.wait();
        return false;
    };
    const QSet<QString> gone = GoneFiles({u"/gone"_s, u"/dead"_s, u"/later"_s}, std::chrono::milliseconds(1), exists);
    EXPECT_FALSE(gone.contains(u"/dead"_s));
    EXPECT_FALSE(gone.contains(u"/later"_s));
    disk.set_value();
    EXPECT_EQ(GoneFiles({u"/dead"_s}, limit, exists), QSet<QString>{u"/dead"_s}) << "it is asked again";
}

} // namespace
