#include "host/values/Data.h"
#include "host/values/Encoding.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

/// Conversions between the types of values, and the properties of a value after them.

namespace {

using host::Binary;
using host::Data;
using host::DataType;
using host::DateTime;
using host::Decimal;
using host::Text;

Binary referenceToFile() {
    Binary binary;
    binary.setFileName(Text(u"a7.txt"));
    return binary;
}

Binary container() {
    Binary binary = referenceToFile();
    binary.add({{'F', 'I', 'L', 'E'}}, std::array{std::byte{1}, std::byte{2}});
    return binary;
}

TEST(DataConversions, followOneTable) {
    const DateTime moment{.days = 739'940, .micros = 58'000 * DateTime::microsPerSecond};
    constexpr const char* none = "none";
    const struct {
        Data value;
        const char *text, *number, *date, *time, *timestamp; ///< as converted, in the text's form
        bool boolean;
    } rows[] = {
        {Data(Text(u"abc")), "abc", none, none, none, none, false},
        {Data(referenceToFile()), "a7.txt", none, none, none, none, true},
        {Data(Text(u"x0.5")), "x0.5", ".5", none, none, none, true},
        {Data(Text(u"11/21/2026")), "11/21/2026", "11212026", "11/21/2026", none, "11/21/2026 12:00 AM",
         true},
        {Data(Text(u"11/21/2026 4:06:40 PM")), "11/21/2026 4:06:40 PM", "1121202640640", "11/21/2026",
         "16:06:40", "11/21/2026 4:06:40 PM", true},
        {Data(Decimal(739'941)), "739941", "739941", "11/21/2026", "205:32:21", "1/9/0001 1:32:21 PM", true},
        {Data(*Decimal::parse(u"-1.5")), "-1.5", "-1.5", none, "-0:00:01.5", none, true},
        {Data(*Decimal::parse(u"1e399")), nullptr, nullptr, none, none, none, true},
        {Data(moment, DataType::date), "11/21/2026", "739941", "11/21/2026", none, "11/21/2026 12:00 AM",
         true},
        {Data(moment, DataType::time), "16:06:40", "58000", none, "16:06:40", none, true},
        {Data(moment, DataType::timestamp), "11/21/2026 4:06:40 PM", "63930874000", "11/21/2026", "16:06:40",
         "11/21/2026 4:06:40 PM", true},
        {Data(container()), "?", none, none, none, none, true},
    };
    constexpr DataType types[] = {DataType::text, DataType::number, DataType::date, DataType::time,
                                  DataType::timestamp};
    for (const auto& row : rows) {
        EXPECT_EQ(row.value.asBoolean(), row.boolean) << row.value.asText().utf8();
        const char* const columns[] = {row.text, row.number, row.date, row.time, row.timestamp};
        for (std::size_t i = 0; i < std::size(types); ++i) {
            const char* const expected = columns[i];
            if (expected == nullptr) continue;
            SCOPED_TRACE(row.value.asText().utf8() + " as " + std::string(host::typeWord(types[i])));
            Data converted = row.value;
            const bool done = converted.convert(types[i]);
            // Every value converts to a number, if only an empty one. Dates and times need a valid text.
            ASSERT_EQ(done, expected != none || types[i] == DataType::number);
            if (!done) {
                EXPECT_TRUE(converted.isIdenticalTo(row.value));
                continue;
            }
            EXPECT_EQ(converted.nativeType(), types[i]);
            EXPECT_EQ(converted.asText().utf8(), expected == none ? "" : expected);
            EXPECT_EQ(converted.isEmpty(), expected == none);
        }
    }
}

TEST(DataTypes, refuseUnknownNumbers) {
    Data value{Decimal(3)};
    for (const std::int32_t type : {-5, 8, 99})
        EXPECT_FALSE(value.convert(static_cast<DataType>(type))) << type;
    EXPECT_TRUE(value.isIdenticalTo(Data(Decimal(3))));
    EXPECT_TRUE(value.convert(DataType::boolean));
    EXPECT_EQ(value.asText().utf8(), "1");
    EXPECT_EQ(value.nativeType(), DataType::boolean);
    EXPECT_FALSE(value.convert(DataType::binary));
}

TEST(DataTypes, keepOnlyTheirPartOfATimestamp) {
    const DateTime late{.days = 5, .micros = 90'000 * DateTime::microsPerSecond};
    EXPECT_EQ(Data(late, DataType::date).asTimestamp(), (DateTime{.days = 5, .micros = 0}));
    EXPECT_EQ(Data(late, DataType::time).asTime(), (DateTime{.days = 0, .micros = late.micros}));
    const Data moment(late, DataType::timestamp);
    EXPECT_EQ(moment.asText().utf8(), "1/7/0001 1:00 AM");
    EXPECT_EQ(DateTime::parseTimestamp(moment.asText().units()), moment.asTimestamp());
    EXPECT_EQ(moment.asDate().days, 6);
}

TEST(DataReadings, areIndependentOfCopies) {
    Data first{Decimal(5)};
    const Text& reading = first.asText();
    Data second = first;
    second.setNumber(Decimal(6));
    EXPECT_EQ(second.asText().utf8(), "6");
    EXPECT_EQ(reading.utf8(), "5");
    first.setText(first.asText()); // the value's own text
    EXPECT_EQ(first.asText().utf8(), "5");
    first.setText(Text(u"7"));
    EXPECT_EQ(first.asNumber(), Decimal(7));
}

TEST(DataNumbers, inLongTextsAreBounded) {
    EXPECT_EQ(Data(Text(std::u16string(1'000'000, u'x') + u"-x.5")).number()->text(), u"-.5");
    EXPECT_FALSE(Data(Text(std::u16string(100'000, u'9'))).number());
    EXPECT_EQ(Data(Text(u"1." + std::u16string(100'000, u'3'))).number()->text().size(), 402U);
}

TEST(BinaryStreams, existOncePerType) {
    Binary binary = container();
    const host::QuadChar file{{'F', 'I', 'L', 'E'}}, other{{'P', 'N', 'G', 'f'}};
    binary.add(other, {});
    binary.add(file, std::array{std::byte{9}, std::byte{8}, std::byte{7}});
    EXPECT_EQ(binary.streams().size(), 2U);
    EXPECT_EQ(binary.totalSize(), 3U + binary.fileName().size());
    EXPECT_FALSE(binary == container());
    EXPECT_TRUE(binary.remove(file));
    EXPECT_FALSE(binary.remove(file));
    EXPECT_EQ(binary.indexOf(other), 0);
    EXPECT_EQ(binary.indexOf(file), -1);
    // A container with only a name is not empty; one with nothing is.
    EXPECT_FALSE(Data(referenceToFile()).isEmpty());
    EXPECT_TRUE(Data(Binary()).isEmpty());
}

} // namespace
