#include "agent/LogTail.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

QString written(const QTemporaryDir &folder, const QByteArray &bytes)
{
    const QString path = folder.filePath(QStringLiteral("current.log"));
    QFile file(path);
    file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    file.write(bytes);
    return path;
}

QByteArray repeated(const QByteArray &line, int times)
{
    QByteArray bytes;
    for (int i = 0; i < times; ++i)
        bytes += line + QByteArray::number(i) + '\n';
    return bytes;
}

} // namespace

TEST(LogTail, KeepsTheLast200LinesThenTheLast16000Characters)
{
    const QString kept = LogTail::of(QString::fromUtf8(repeated("line ", 500)));
    // The empty piece after the last line feed is one of the 200.
    EXPECT_TRUE(kept.startsWith(QStringLiteral("line 301\n")));
    EXPECT_TRUE(kept.endsWith(QStringLiteral("line 499\n")));
    EXPECT_EQ(kept.count(u'\n'), 199);

    const QString wide = LogTail::of(QString(200, u'x') + QString(20000, u'y'));
    EXPECT_EQ(wide, QStringLiteral("…\n") + QString(16000, u'y'));
    EXPECT_EQ(LogTail::of(QString(16000, u'z')), QString(16000, u'z'));
    // A character of several code points counts once and is never split.
    const QString family = QStringLiteral("👨‍👩‍👧");
    const QString kept16000 = LogTail::of(QStringLiteral("a") + family.repeated(16000));
    EXPECT_EQ(kept16000, QStringLiteral("…\n") + family.repeated(16000));
}

// Reading from the end must give what reading the whole file gives, whatever the shape of
// the log: many short lines, a few enormous ones, multi-byte text cut anywhere, no line feed.
TEST(LogTail, ReadingTheEndGivesWhatTheWholeFileGives)
{
    QTemporaryDir folder;
    QRandomGenerator random(7);
    const QList<QByteArray> pieces{
        "a", "long line of output ", "ü", "日本語", "👍🏽", "🇩🇪", "e\xCC\x81", "\r\n", "\n", "\n\n", "\xFF\xFE",
        "\t"};
    for (int round = 0; round < 60; ++round) {
        QByteArray bytes;
        const int lineFeedOdds = 1 + int(random.bounded(400)); // from short lines to one huge line
        const qsizetype size = random.bounded(1, 400000);
        while (bytes.size() < size) {
            if (random.bounded(lineFeedOdds) == 0)
                bytes += '\n';
            else
                bytes += pieces[random.bounded(int(pieces.size()))];
        }
        const QString path = written(folder, bytes);
        ASSERT_EQ(LogTail::read(path), LogTail::of(QString::fromUtf8(bytes)))
            << "round " << round << ", " << bytes.size() << " bytes, line feed odds 1/" << lineFeedOdds;
    }
    EXPECT_EQ(LogTail::read(written(folder, repeated("", 5000))), LogTail::of(QString::fromUtf8(repeated("", 5000))));
    EXPECT_EQ(LogTail::read(written(folder, QByteArray(3'000'000, 'q'))), QStringLiteral("…\n") + QString(16000, u'q'));
    // A file that can't be read is empty.
    EXPECT_EQ(LogTail::read(folder.filePath(QStringLiteral("absent.log"))), QString());
    EXPECT_EQ(LogTail::read(folder.path()), QString());
}
