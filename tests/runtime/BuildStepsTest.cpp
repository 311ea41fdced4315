#include "runtime/BuildSteps.h"

#include <gtest/gtest.h>

using namespace zentoro;

TEST(BuildSteps, SwiftLiteralsEscapeWhatWouldEndOrBreakThemInTheEntryFile)
{
    EXPECT_EQ(BuildSteps::swiftLiteral(QStringLiteral("a\"b\\c\nd\te\x01")),
              QStringLiteral("\"a\\\"b\\\\c\\nd\\te\\u{1}\""));
    // Interpolation needs a backslash, which is escaped, so "\(" stays text.
    EXPECT_EQ(BuildSteps::swiftLiteral(QStringLiteral("\\(x)")), QStringLiteral("\"\\\\(x)\""));
    EXPECT_EQ(BuildSteps::swiftLiteral(QStringLiteral("Café ☕")), QStringLiteral("\"Café ☕\""));

    // The entry file carries the copy's name and suite that way; the rest of it is proved by
    // every build that loads.
    const QString entry = BuildSteps::entryFile(QStringLiteral("Bob's \"Timer\""),
                                                QStringLiteral("dev.vantu.zentoro.app.Bob's \"Timer\""));
    EXPECT_TRUE(entry.contains(QStringLiteral("appName: \"Bob's \\\"Timer\\\"\")"))) << entry.toStdString();
    EXPECT_TRUE(
        entry.contains(QStringLiteral("UserDefaults(suiteName: \"dev.vantu.zentoro.app.Bob's \\\"Timer\\\"\")")));
}

TEST(BuildSteps, CleanShowsRelativePathsAndNamesTheGeneratedEntry)
{
    const QString sources = QStringLiteral("/data/Apps/T/Sources");
    const QString entry = QStringLiteral("/data/Apps/T/Build/ZentoroEntry.swift");
    const QString output = QStringLiteral("\n/data/Apps/T/Sources/Views/Foo.swift:3:5: error: cannot find 'x'\n"
                                          "/data/Apps/T/Build/ZentoroEntry.swift:5:75: error: no AppRoot\n"
                                          "/data/Apps/T/SourcesOld/Bar.swift:1:1: note: elsewhere\n\n");
    EXPECT_EQ(BuildSteps::clean(output, sources + QStringLiteral("/"), entry),
              QStringLiteral("Views/Foo.swift:3:5: error: cannot find 'x'\n"
                             "<Zentoro's generated entry point>:5:75: error: no AppRoot\n"
                             "/data/Apps/T/SourcesOld/Bar.swift:1:1: note: elsewhere"));
}

TEST(BuildSteps, CleanCutsBeyondTwelveThousandCharactersAsPeopleCountThem)
{
    const QString entry = QStringLiteral("/e.swift");
    const QString exactly = QString(BuildSteps::outputLimit, u'x');
    EXPECT_EQ(BuildSteps::clean(exactly, QStringLiteral("/s"), entry), exactly);

    // A flag is two code points and four UTF-16 units but one character.
    const QString flag = QStringLiteral("🇩🇪");
    QString flags;
    for (qsizetype i = 0; i < BuildSteps::outputLimit; ++i)
        flags += flag;
    EXPECT_EQ(BuildSteps::clean(flags, QStringLiteral("/s"), entry), flags);
    EXPECT_EQ(BuildSteps::clean(flags + flag, QStringLiteral("/s"), entry),
              flags + QStringLiteral("\n… (output truncated)"));
}
