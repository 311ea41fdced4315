#include "agent/HistoryUpkeep.h"
#include "agent/Agent.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace zentoro;
using namespace zentoro::HistoryUpkeep;

namespace {

JSON call(const QString &id)
{
    return JSON::object({{"type", "function_call"}, {"call_id", id}, {"name", "build"}, {"arguments", "{}"}});
}

JSON output(const QString &id, JSON value = "done")
{
    return Agent::output(id, value);
}

JSON reasoning()
{
    return JSON::object({{"type", "reasoning"}, {"encrypted_content", "opaque"}});
}

JSON text(const QString &words)
{
    return Agent::message("user", words);
}

JSON image(const QString &url)
{
    return JSON::object({{"type", "input_image"}, {"image_url", url}, {"detail", "auto"}});
}

JSON screenshotOutput(const QString &id, const QString &url)
{
    return output(id, JSON::array({JSON::object({{"type", "input_text"}, {"text", "The app:"}}), image(url)}));
}

// The image_url of each picture part in `items`, in order, or the notice's text for a part
// that was replaced.
QStringList pictures(const JSON::Array &items)
{
    QStringList result;
    for (const JSON &item : items) {
        const JSON::Array *parts = item.arrayAt("output");
        if (!parts)
            continue;
        for (const JSON &part : *parts) {
            if (auto url = part.stringAt("image_url"))
                result.append(url->left(21));
            else if (part.stringAt("text") == screenshotNotice())
                result.append("notice");
        }
    }
    return result;
}

} // namespace

TEST(HistoryUpkeep, WhatEntersTheHistory)
{
    EXPECT_FALSE(forHistory(JSON::object({{"type", "reasoning"}, {"id", "rs_1"}, {"summary", JSON::array()}})));
    EXPECT_EQ(forHistory(JSON::object({{"type", "reasoning"}, {"id", "rs_1"}, {"encrypted_content", "x"}})),
              JSON::object({{"type", "reasoning"}, {"encrypted_content", "x"}}));
    EXPECT_EQ(forHistory(text("hello")), text("hello"));
    EXPECT_EQ(forHistory(JSON("loose text")), JSON("loose text"));
    EXPECT_EQ(forHistory(JSON::object({{"type", "function_call"}, {"id", "fc_1"}, {"call_id", "c"}})),
              JSON::object({{"type", "function_call"}, {"call_id", "c"}}));
}

TEST(HistoryUpkeep, ConsistentDropsHalfPairsAndKeepsEverythingElse)
{
    const JSON noID = JSON::object({{"type", "function_call_output"}, {"output", "orphan"}});
    const JSON::Array items{text("hi"),  call("a"),     output("a"), call("stopped"),
                            reasoning(), output("cut"), JSON(7),     noID};
    EXPECT_EQ(consistent(items), (JSON::Array{text("hi"), call("a"), output("a"), reasoning(), JSON(7)}));

    // A call without an id pairs with an output without one.
    const JSON callNoID = JSON::object({{"type", "function_call"}, {"name", "build"}});
    EXPECT_EQ(consistent({callNoID, noID}), (JSON::Array{callNoID, noID}));
}

TEST(HistoryUpkeep, TheNewestThreePicturesAreSentAndTheRestSayWhy)
{
    QTemporaryDir folder;
    const auto writeShot = [&](int i, const QByteArray &bytes) {
        QFile file(folder.filePath(QStringLiteral("shot%1.png").arg(i)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    };
    QStringList urls;
    for (int i = 0; i < 5; ++i) {
        writeShot(i, "PNG" + QByteArray::number(i));
        urls.append(QUrl::fromLocalFile(folder.filePath(QStringLiteral("shot%1.png").arg(i))).toString());
    }
    const QString inline_ = "data:image/png;base64,AAAA";
    // Picture 3's file has been cleaned away: picture 1 moves up into the three.
    QFile::remove(folder.filePath("shot3.png"));
    const JSON::Array items{
        screenshotOutput("s0", urls[0]), screenshotOutput("s1", urls[1]), call("s1"),
        screenshotOutput("s2", urls[2]), screenshotOutput("s3", urls[3]), screenshotOutput("x", inline_),
        screenshotOutput("s4", urls[4]), output("y", JSON::array())};

    const JSON::Array sent = attachingScreenshots(items, 3);
    EXPECT_EQ(pictures(sent), (QStringList{"notice", "data:image/png;base64", "data:image/png;base64", "notice",
                                           "data:image/png;base64", "data:image/png;base64"}));
    const JSON::Array *parts = sent[6].arrayAt("output");
    EXPECT_EQ((*parts)[1].stringAt("image_url"), "data:image/png;base64," + QByteArray("PNG4").toBase64());
    EXPECT_EQ((*parts)[1].stringAt("detail"), "auto");
    EXPECT_EQ((*sent[0].arrayAt("output"))[1], JSON::object({{"type", "input_text"}, {"text", screenshotNotice()}}));
    // The stored references are untouched.
    EXPECT_EQ((*items[6].arrayAt("output"))[1].stringAt("image_url"), urls[4]);

    EXPECT_EQ(pictures(attachingScreenshots(items, std::numeric_limits<qsizetype>::max())),
              (QStringList{"data:image/png;base64", "data:image/png;base64", "data:image/png;base64", "notice",
                           "data:image/png;base64", "data:image/png;base64"}));
    EXPECT_EQ(pictures(attachingScreenshots(items, 0)),
              (QStringList{"notice", "notice", "notice", "notice", "data:image/png;base64", "notice"}));

    // A picture rewritten in place is read afresh; one removed since is left out.
    const auto sentURL = [&] {
        return (*attachingScreenshots(items, 3)[6].arrayAt("output"))[1].stringAt("image_url");
    };
    writeShot(4, "second picture");
    EXPECT_EQ(sentURL(), "data:image/png;base64," + QByteArray("second picture").toBase64());
    QFile::remove(folder.filePath("shot4.png"));
    EXPECT_EQ(sentURL(), std::nullopt);
}

// Whole requests remember what they learnt of the history; whatever happens to it between
// two requests, each must send what a fresh look would.
TEST(HistoryUpkeep, AWholeRequestFollowsEveryChangeToTheHistory)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("shot.png");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("PNG");
    file.close();
    const QString url = QUrl::fromLocalFile(path).toString();

    QRandomGenerator random(11);
    const auto id = [&] { return QStringLiteral("c%1").arg(random.bounded(12)); };
    const auto anyItem = [&]() -> JSON {
        switch (random.bounded(6)) {
        case 0: return call(id());
        case 1: return output(id());
        case 2: return screenshotOutput(id(), url);
        case 3: return reasoning();
        case 4: return JSON(7);
        default: return text("more");
        }
    };
    QList<JSON> history;
    for (int step = 0; step < 400; ++step) {
        switch (random.bounded(10)) {
        case 0:
            if (!history.isEmpty())
                history.removeAt(random.bounded(history.size()));
            break;
        case 1: history.remove(0, std::min<qsizetype>(history.size(), random.bounded(4))); break;
        case 2:
            if (!history.isEmpty())
                history[random.bounded(history.size())].set("call_id", id());
            break;
        case 3:
            if (!history.isEmpty())
                history[random.bounded(history.size())] = anyItem();
            break;
        default: history.append(anyItem());
        }
        QList<JSON> pending;
        for (int count = random.bounded(3); count > 0; --count)
            pending.append(anyItem());
        JSON::Array everything(history.begin(), history.end());
        everything.insert(everything.end(), pending.begin(), pending.end());
        ASSERT_EQ(sendable(history, pending, 3), attachingScreenshots(consistent(everything), 3)) << "step " << step;
    }
}

TEST(HistoryUpkeep, TheCutFallsNearestTheMiddleWhereTheStructureAllowsOne)
{
    QList<JSON> history;
    for (int i = 0; i < 10; ++i)
        history.append(text(QString::number(i)));
    ASSERT_TRUE(trimHistory(history, {}));
    ASSERT_EQ(history.size(), 6);
    EXPECT_EQ(history[0], Agent::message("developer", trimNotice()));
    EXPECT_EQ(history[1], text("5"));
    EXPECT_EQ(history[5], text("9"));

    // Of two cuts equally near the middle, the later wins; never in front of reasoning or
    // between a call and its output.
    QList<JSON> structured{text("0"),   text("1"), call("a"),   reasoning(),
                           output("a"), text("5"), reasoning(), text("7")};
    ASSERT_TRUE(trimHistory(structured, {}));
    EXPECT_EQ(structured.mid(1), (QList<JSON>{text("5"), reasoning(), text("7")}));

    QList<JSON> evenly{text("0"), text("1"), text("2"), reasoning(), text("4"), text("5")};
    ASSERT_TRUE(trimHistory(evenly, {}));
    EXPECT_EQ(evenly.mid(1), (QList<JSON>{text("4"), text("5")}));

    // Some histories can't be cut at all.
    QList<JSON> empty;
    EXPECT_FALSE(trimHistory(empty, {}));
    QList<JSON> one{text("only")};
    EXPECT_FALSE(trimHistory(one, {}));
    EXPECT_EQ(one, QList<JSON>{text("only")});

    // One long chain of unfinished work: every call's output is still to come.
    QList<JSON> chain{call("a"), call("b"), call("c")};
    const QList<JSON> pending{output("a"), output("b"), output("c")};
    EXPECT_FALSE(trimHistory(chain, pending));
    EXPECT_EQ(chain.size(), 3);

    // With the outputs of late calls still queued, no cut falls after those calls.
    QList<JSON> tail{text("0"), text("1"), text("2"), call("x"), text("4"), text("5"), text("6"), text("7")};
    ASSERT_TRUE(trimHistory(tail, {output("x")}));
    EXPECT_EQ(tail.size(), 6);
    EXPECT_EQ(tail[1], call("x"));
}
