#include "core/DataURL.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace zentoro;

// Every length's padding, and every byte value in every place of a group, by the vector code
// and by the portable code that processors without AVX2 run.
TEST(DataURL, EncodesAsBase64ForEveryLengthAndByte)
{
    for (const auto instructions : {DataURL::Instructions::Fastest, DataURL::Instructions::Portable}) {
        QByteArray bytes;
        QRandomGenerator random(7);
        for (int length = 0; length < 200; ++length) {
            EXPECT_EQ(DataURL::make(QLatin1StringView("image/png"), bytes, instructions),
                      QStringLiteral("data:image/png;base64,") + QString::fromLatin1(bytes.toBase64()))
                << "length " << length;
            bytes.append(char(random.bounded(256)));
        }
        QByteArray everyByte;
        for (int shift = 0; shift < 3; ++shift) {
            everyByte = QByteArray(shift, 'x');
            for (int value = 0; value < 256; ++value)
                everyByte.append(char(value));
            EXPECT_EQ(DataURL::make(QLatin1StringView("text/plain"), everyByte, instructions),
                      QStringLiteral("data:text/plain;base64,") + QString::fromLatin1(everyByte.toBase64()));
        }
    }
}
