#include "runtime/RuntimeState.h"

#include "support/Files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace zentoro;

namespace {

QDateTime utc(const char *text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toUTC();
}

RuntimeState sample()
{
    RuntimeState state;
    state.versions = {{1, utc("2026-03-01T09:30:12Z"), QStringLiteral("The original app"), false},
                      {2, utc("2026-03-01T10:00:00Z"), QStringLiteral("Adds a \"timer\" ✓"), true}};
    state.current = 2;
    state.lastGood = 1;
    state.loading = 2;
    state.nextNumber = 3;
    return state;
}

std::optional<RuntimeState> decode(const char *text)
{
    return RuntimeState::decode(QByteArray(text));
}

} // namespace

TEST(RuntimeState, RoundTripsThroughItsFileWithWholeSecondDatesInUTCAndOptionalNumbersLeftOut)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("state.json"));
    EXPECT_EQ(RuntimeState::read(path), RuntimeState{}) << "a missing file reads as the default";
    sample().write(path);
    EXPECT_EQ(RuntimeState::read(path), sample());
    const QByteArray bytes = sample().encode();
    EXPECT_TRUE(bytes.contains("\"2026-03-01T09:30:12Z\""));
    EXPECT_TRUE(bytes.contains('\n')) << "written for people to read";
    test::writeFile(path, R"({"versions": []})");
    EXPECT_EQ(RuntimeState::read(path), RuntimeState{}) << "so does a corrupt one";

    const std::optional<RuntimeState> decoded = decode(R"({"nextNumber": 4, "versions": []})");
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->current || decoded->lastGood || decoded->loading);
    EXPECT_EQ(decoded->nextNumber, 4);
    const QByteArray written = decoded->encode();
    EXPECT_FALSE(written.contains("current") || written.contains("lastGood") || written.contains("loading"));
    EXPECT_EQ(decode(R"({"current": null, "nextNumber": 1, "versions": []})"), RuntimeState{});
}

TEST(RuntimeState, DecodingIsStrictAboutRequiredKeysTypesAndDates)
{
    const char *record = R"({"crashed": false, "date": "2026-03-01T09:30:12Z", "number": 1, "summary": "s"})";
    ASSERT_TRUE(RuntimeState::decode(QByteArray(R"({"nextNumber": 2, "versions": [)") + record + "]}"));
    // Dates in another zone are the same instant.
    const auto offset = decode(
        R"({"nextNumber": 2, "versions": [{"crashed": false, "date": "2026-03-01T10:30:12+01:00", "number": 1, "summary": "s"}]})");
    ASSERT_TRUE(offset);
    EXPECT_EQ(offset->versions[0].date, utc("2026-03-01T09:30:12Z"));
    // Unknown keys are ignored.
    EXPECT_TRUE(decode(R"({"nextNumber": 1, "versions": [], "theme": "dark"})"));

    const char *rejected[] = {
        R"({"versions": []})",
        R"({"nextNumber": 1})",
        R"({"nextNumber": "1", "versions": []})",
        R"({"nextNumber": 1.5, "versions": []})",
        R"({"nextNumber": 1, "versions": [], "current": "2"})",
        R"({"nextNumber": 1, "versions": {}})",
        R"({"nextNumber": 2, "versions": [{"date": "2026-03-01T09:30:12Z", "number": 1, "summary": "s"}]})",
        R"({"nextNumber": 2, "versions": [{"crashed": 0, "date": "2026-03-01T09:30:12Z", "number": 1, "summary": "s"}]})",
        R"({"nextNumber": 2, "versions": [{"crashed": false, "date": "yesterday", "number": 1, "summary": "s"}]})",
        R"({"nextNumber": 2, "versions": [{"crashed": false, "date": "2026-03-01T09:30:12.250Z", "number": 1, "summary": "s"}]})",
        R"({"nextNumber": 2, "versions": [{"crashed": false, "date": "2026-03-01T09:30:12", "number": 1, "summary": "s"}]})",
        R"({"nextNumber": 2, "versions": [{"crashed": false, "date": "2026-02-30T09:30:12Z", "number": 1, "summary": "s"}]})",
        R"({"nextNumber": 2, "versions": [null]})",
        R"([])",
        R"({"nextNumber": 1, "versions": [])",
    };
    for (const char *text : rejected)
        EXPECT_FALSE(decode(text)) << text;
}
