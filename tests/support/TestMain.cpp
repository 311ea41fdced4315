#include <QApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Every test program is an offscreen Qt application whose data and settings folders
// are fresh and private, so no test touches the user's own copies. The compiled UI kit
// is the one thing they share: building it takes a minute, and its cache is written
// atomically, so programs running at once may share it safely.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    const QString support = home.path() + QStringLiteral("/data/Zentoro");
    QDir().mkpath(support);
    QDir().mkpath(QStringLiteral(ZENTORO_TEST_KIT_CACHE));
    QFile::link(QStringLiteral(ZENTORO_TEST_KIT_CACHE), support + QStringLiteral("/KitCache"));
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/config").toUtf8());
    qputenv("XDG_CACHE_HOME", (home.path() + "/cache").toUtf8());
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Zentoro"));
    QApplication::setApplicationName(QStringLiteral("Zentoro"));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
