// A record of the test's own goes through the same table, reader and writer as those on disk.
#include "LaunchKit/Records/RecordType.h"

#include "LaunchKit/IconLabel.h"
#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Records/RecordWriter.h"
#include "LaunchKit/Strategy.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

struct Inner {
    std::string name{};
    std::optional<IconLabel::Position> position{};
};

struct Outer {
    Strategy first = Strategy::homeOverride;
    Strategy second = Strategy::homeOverride;
    std::optional<Strategy> third{};
    bool flag = true;
    std::vector<std::string> list{};
    std::map<std::string, std::string> map{};
    Inner inner{};
    std::optional<Inner> other{};
};

} // namespace

template<>
struct RecordTable<Inner> {
    static constexpr std::string_view name = "inner record";
    static constexpr auto fields = sortedByKey(std::array{
        Row<Inner>::required<&Inner::name>("name"),
        Row<Inner>::of<&Inner::position>("position"),
    });
};

template<>
struct RecordTable<Outer> {
    static constexpr std::string_view name = "record";
    static constexpr auto fields = sortedByKey(std::array{
        Row<Outer>::of<&Outer::second>("second"),
        Row<Outer>::required<&Outer::first>("first"),
        Row<Outer>::of<&Outer::third>("third"),
        Row<Outer>::of<&Outer::flag>("flag"),
        Row<Outer>::of<&Outer::list>("list"),
        Row<Outer>::of<&Outer::map>("map"),
        Row<Outer>::of<&Outer::inner>("inner"),
        Row<Outer>::of<&Outer::other>("other"),
    });
};

namespace {

Outer read(std::string json) {
    Outer record;
    EXPECT_EQ(readRecord(json, record), "");
    return record;
}

std::string faultsOf(std::string json) {
    Outer record;
    return readRecord(json, record);
}

TEST(RecordTypeTest, EachFieldOfOneEnumerationGetsItsOwnValue) {
    const Outer record =
        read(R"({"first":"wrapper-identity","second":"container-redirect","third":"unsupported"})");
    EXPECT_EQ(record.first, Strategy::wrapperIdentity);
    EXPECT_EQ(record.second, Strategy::containerRedirect);
    EXPECT_EQ(record.third, Strategy::unsupported);
    const Outer partial = read(R"({"second":"unsupported","first":"container-redirect"})");
    EXPECT_EQ(partial.first, Strategy::containerRedirect);
    EXPECT_EQ(partial.second, Strategy::unsupported);
    EXPECT_EQ(partial.third, std::nullopt);
}

TEST(RecordTypeTest, EachFieldOfOneRecordTypeGetsItsOwnValue) {
    const Outer record = read(R"({"first":"unsupported","other":{"name":"b","position":"top"},)"
                              R"("inner":{"name":"a"}})");
    EXPECT_EQ(record.inner.name, "a");
    EXPECT_EQ(record.inner.position, std::nullopt);
    ASSERT_TRUE(record.other);
    EXPECT_EQ(record.other->name, "b");
    EXPECT_EQ(record.other->position, IconLabel::Position::top);
}

TEST(RecordTypeTest, WhatIsWrittenIsReadBack) {
    Outer record;
    record.second = Strategy::unsupported;
    record.flag = false;
    record.list = {"/a", ""};
    record.map = {{"k", "v"}};
    record.inner.name = "in";
    EXPECT_EQ(writeRecord(record).value(), R"({
  "first": "home-override",
  "flag": false,
  "inner": {
    "name": "in"
  },
  "list": [
    "\/a",
    ""
  ],
  "map": {
    "k": "v"
  },
  "second": "unsupported"
})");
    record.third = Strategy::wrapperIdentity;
    record.other = Inner{"o", IconLabel::Position::center};
    const Outer back = read(writeRecord(record).value());
    EXPECT_EQ(back.second, Strategy::unsupported);
    EXPECT_EQ(back.third, Strategy::wrapperIdentity);
    EXPECT_FALSE(back.flag);
    EXPECT_EQ(back.list, record.list);
    EXPECT_EQ(back.map, record.map);
    EXPECT_EQ(back.inner.name, "in");
    EXPECT_EQ(back.other.value().position, IconLabel::Position::center);
}

TEST(RecordTypeTest, WritingChangesNothing) {
    const Outer record;
    (void)writeRecord(record);
    EXPECT_FALSE(record.third);
    EXPECT_FALSE(record.other);
}

TEST(RecordTypeTest, TextThatIsNotUtf8IsNotWritten) {
    Outer record;
    record.inner.name = "\xff";
    EXPECT_EQ(writeRecord(record), std::nullopt);
}

TEST(RecordTypeTestFaults, EveryFaultOfAFileIsReported) {
    EXPECT_EQ(
        faultsOf(R"({"second":"other","flag":1,"list":["a",2,[3],{"x":4}],"map":{"a":5},)"
                 R"("third":[[{"first":"unsupported"}]],"other":{"name":6,"position":"left"},)"
                 R"("inner":{"position":null}})"),
        "The value of “second” is not known. "
        "The value of “flag” is of the wrong type. "
        "The value of “list” is of the wrong type. "
        "The value of “map” is of the wrong type. "
        "The value of “third” is of the wrong type. "
        "The value of “other.name” is of the wrong type. "
        "The value of “other.position” is not known. "
        "The key “inner.name” is missing. "
        "The key “first” is missing.");
}

TEST(RecordTypeTestFaults, FaultsBeforeASyntaxErrorAreReportedWithIt) {
    EXPECT_EQ(faultsOf(R"({"flag":"yes","first":nonsense})"),
              "The value of “flag” is of the wrong type. "
              "The record is not valid JSON: Invalid value.");
    EXPECT_EQ(faultsOf(R"({"flag":1} x)"),
              "The value of “flag” is of the wrong type. The key “first” is missing. "
              "The record is not valid JSON: "
              "The document root must not be followed by other values.");
}

TEST(RecordTypeTestFaults, ValuesAfterAFaultyOneAreStillRead) {
    std::string json = R"({"list":[["a"],"b"],"map":[{"a":"b"}],"inner":[],"first":"unsupported"})";
    Outer record;
    EXPECT_EQ(readRecord(json, record), "The value of “list” is of the wrong type. "
                                        "The value of “map” is of the wrong type. "
                                        "The value of “inner” is of the wrong type.");
    EXPECT_EQ(record.first, Strategy::unsupported);
}

TEST(RecordTypeTestFaults, HalfACharacterIsAFaultOfItsMember) {
    EXPECT_EQ(faultsOf(R"({"first":"unsupported","list":["\udc00"],"map":{"\udc00":"a"}})"),
              "The value of “list” contains an unpaired surrogate. "
              "The value of “map” contains an unpaired surrogate.");
}

TEST(RecordTypeTestFaults, AFileThatIsNotAnObjectHasThatFaultAlone) {
    EXPECT_EQ(faultsOf("[1]"), "The record is not a JSON object.");
    EXPECT_EQ(faultsOf("\"text\""), "The record is not a JSON object.");
    EXPECT_EQ(faultsOf("\xff"), "The record is not valid UTF-8.");
}

} // namespace
} // namespace quorvel
