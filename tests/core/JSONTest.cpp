#include "core/JSON.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using zentoro::JSON;

TEST(JSON, NumbersEncodeAsIntegersBelowTheLimitAndNaNOrInfinityFailTheWholeDocument)
{
    const std::pair<double, const char *> cases[]{{2.0, "2"},
                                                  {2.5, "2.5"},
                                                  {-0.0, "0"},
                                                  {999999999999999.0, "999999999999999"},
                                                  {-999999999999999.0, "-999999999999999"},
                                                  {1e15, "1e+15"},
                                                  {-1e15, "-1e+15"},
                                                  {1e300, "1e+300"}};
    for (const auto &[number, text] : cases)
        EXPECT_EQ(JSON::number(number).encode(), text);
    EXPECT_EQ(JSON(42).encode(), "42");

    const JSON nan = JSON::object({{"a", JSON::array({1, JSON::number(std::nan(""))})}});
    EXPECT_THROW(nan.encode(), JSON::Error);
    EXPECT_THROW(JSON::number(std::numeric_limits<double>::infinity()).encode(), JSON::Error);
}

TEST(JSON, DecodingAndReadingKeepCasesApart)
{
    EXPECT_EQ(JSON::decode("1"), JSON::decode("1.0"));
    EXPECT_EQ(JSON::decode("1").kind(), JSON::Kind::Number);
    EXPECT_EQ(JSON::decode("true"), JSON(true));
    EXPECT_FALSE(JSON::decode("true").numberValue());
    EXPECT_NE(JSON::decode("1"), JSON(true));
    EXPECT_NE(JSON::decode("0"), JSON(false));
    EXPECT_NE(JSON::decode("null"), JSON::decode("0"));

    const JSON object = JSON::decode(R"({"present": null, "n": 1, "s": "x"})");
    ASSERT_NE(object.find("present"), nullptr);
    EXPECT_TRUE(object.find("present")->isNull());
    EXPECT_EQ(object.find("absent"), nullptr);
    EXPECT_FALSE(object.stringAt("n"));
    EXPECT_FALSE(object.numberAt("s"));
    EXPECT_EQ(object.arrayAt("s"), nullptr);
    EXPECT_EQ(JSON("text").find("n"), nullptr);
}

TEST(JSON, ObjectFromPairsKeepsTheLastOfARepeatedKey)
{
    const JSON object = JSON::object({{"a", 1}, {"b", "x"}, {"a", 2}});
    EXPECT_EQ(object.objectValue()->size(), 2u);
    EXPECT_EQ(object.numberAt("a"), 2.0);
    // Decoded text takes the same rule, in nested objects too.
    EXPECT_EQ(JSON::decode(R"({"b":1,"a":2,"a":{"d":1,"c":2,"d":3}})").encode(), R"({"a":{"c":2,"d":3},"b":1})");
}

TEST(JSON, CopiesAreIndependentValues)
{
    const JSON original = JSON::object({{"list", JSON::array({1, 2})}});
    JSON copy = original;
    JSON list = *copy.find("list");
    list.append(3);
    copy.set("list", list);
    EXPECT_EQ(original, JSON::object({{"list", JSON::array({1, 2})}}));
    EXPECT_EQ(copy.arrayAt("list")->size(), 3u);
}

TEST(JSON, StringsRoundTripEscapesAndUnicode)
{
    const QString text = QString::fromUtf8("quote \" back \\ line\n tab\t bell\x07 é 😀 /");
    const QByteArray encoded = JSON(text).encode();
    EXPECT_EQ(encoded, QByteArray("\"quote \\\" back \\\\ line\\n tab\\t bell\\u0007 ") + QByteArray("é 😀 /\""));
    EXPECT_EQ(JSON::decode(encoded), JSON(text));
    EXPECT_EQ(JSON::decode(R"("\ud83d\ude00 \u00e9 \/")"), JSON(QString::fromUtf8("😀 é /")));
}

TEST(JSON, BadTextIsAnErrorNeverAValue)
{
    for (const char *bad : {"",      " ",   "{",        "[1,]",  "{\"a\" 1}",      "01",       "1.",
                            "-",     "+1",  "nul",      "tru",   "\"unterminated", "\"\x01\"", "{} {}",
                            "[1] x", "NaN", "Infinity", "1e999", "\"\\x\"",        "{1: 2}"}) {
        EXPECT_THROW(JSON::decode(bad), JSON::Error) << bad;
    }
    EXPECT_THROW(JSON::decode("\"\xff\xfe\""), JSON::Error);
    EXPECT_THROW(JSON::decode(QByteArray(10000, '[')), JSON::Error);
}

TEST(JSON, DocumentsRoundTripWithSortedKeys)
{
    const QByteArray text = R"({"b":[1,2.5,-3,true,false,null,"s"],"a":{"z":{},"y":[]},"c":1e-7})";
    const JSON value = JSON::decode(text);
    EXPECT_EQ(value.encode(), R"({"a":{"y":[],"z":{}},"b":[1,2.5,-3,true,false,null,"s"],"c":1e-07})");
    EXPECT_EQ(JSON::decode(value.encode()), value);
}
