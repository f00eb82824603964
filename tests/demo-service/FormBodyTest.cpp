#include "demo-service/FormBody.h"

#include <gtest/gtest.h>

using namespace DemoService;

namespace {

const std::vector<FieldRule> login{{"user"}, {"pass"}};
const std::vector<FieldRule> order{
    {"user"}, {"pass"}, {"depo", FieldKind::Number}, {"name"}, {"size", FieldKind::Number}};

std::string faultOf(const std::string& body, const std::vector<FieldRule>& rules)
{
    return readForm(body, rules).fault;
}

// One field, checked by its kind.
std::string faultOfValue(const std::string& value, FieldRule rule)
{
    rule.name = "x";
    return faultOf("x=" + value, {rule});
}

} // namespace

TEST(FormBody, keepsTheOrderOfItsFields)
{
    const FormReading form = readForm("user=a&pass=b&depo=7&name=c.mov&size=9", order);
    EXPECT_EQ(form.fault, "");
    EXPECT_EQ(form.fields, (Fields{{"user", "a"}, {"pass", "b"}, {"depo", "7"}, {"name", "c.mov"}, {"size", "9"}}));
}

TEST(FormBody, readsRawValuesThatHoldTheSeparators)
{
    const FormReading form = readForm("user=a=b&c&pass=p&q=%20&depo=5&r&depo=7&name=x & y=z.mov&size=9", order);
    EXPECT_EQ(form.fault, "");
    EXPECT_EQ(valueOf(form.fields, "user"), "a=b&c");
    EXPECT_EQ(valueOf(form.fields, "pass"), "p&q=%20&depo=5&r");
    EXPECT_EQ(valueOf(form.fields, "depo"), "7");
    EXPECT_EQ(valueOf(form.fields, "name"), "x & y=z.mov");
}

TEST(FormBody, tellsMissingFromOutOfOrder)
{
    EXPECT_EQ(faultOf("", login), "field user is missing");
    EXPECT_EQ(faultOf("User=a&pass=b", login), "field user is missing");
    EXPECT_EQ(faultOf("user=a", login), "field pass is missing");
    EXPECT_EQ(faultOf("pass=b&user=a", login), "field user is out of order");
    EXPECT_EQ(faultOf("user=a&pass=b&depo=7&nam=c&size=9", order), "field name is missing");
    EXPECT_EQ(faultOf("user=a&pass=b&name=c&depo=7&size=9", order), "field depo is out of order");
    EXPECT_EQ(faultOf("user=a&depo=7&pass=b&name=c&size=9", order), "field depo is out of order");
}

TEST(FormBody, refusesWhatFollowsTheLastField)
{
    EXPECT_EQ(faultOf("user=a&pass=b&depo=7&name=c&size=9&more=1", order), "field size is not a number");
    EXPECT_EQ(faultOfValue("C02&more=1", {"", FieldKind::Word}), "field x is followed by something else");
}

TEST(FormBody, checksEachKind)
{
    EXPECT_EQ(faultOfValue("", {"", FieldKind::Number}), "field x is not a number");
    EXPECT_EQ(faultOfValue("-1", {"", FieldKind::Number}), "field x is not a number");
    EXPECT_EQ(faultOfValue("-1", {"", FieldKind::Integer}), "");
    EXPECT_EQ(faultOfValue("-", {"", FieldKind::Integer}), "field x is not an integer");
    EXPECT_EQ(faultOfValue("1", {"", FieldKind::Flag}), "");
    EXPECT_EQ(faultOfValue("2", {"", FieldKind::Flag}), "field x is neither 0 nor 1");
    EXPECT_EQ(faultOfValue("2011-03-04", {"", FieldKind::Date}), "");
    EXPECT_EQ(faultOfValue("2011-3-4", {"", FieldKind::Date}), "field x is not a date");
    EXPECT_EQ(faultOfValue("2011-03-04 05:06:07", {"", FieldKind::DateTime}), "");
    EXPECT_EQ(faultOfValue("2011-03-04T05:06:07", {"", FieldKind::DateTime}), "field x is not a date with its time");
    EXPECT_EQ(faultOfValue("a b", {"", FieldKind::QueryEncoded}), "field x is not percent-encoded");
    EXPECT_EQ(faultOfValue("\xc3\xa9", {"", FieldKind::QueryEncoded}), "field x is not percent-encoded");
    EXPECT_EQ(faultOfValue("a%2", {"", FieldKind::QueryEncoded}), "field x is not percent-encoded");
    EXPECT_EQ(faultOfValue("a&b", {"", FieldKind::FullyEncoded}), "field x is not fully percent-encoded");
}

TEST(FormBody, checksConstants)
{
    EXPECT_EQ(faultOfValue("Deposition", {"", FieldKind::Raw, "Deposition"}), "");
    EXPECT_EQ(faultOfValue("Deposition2", {"", FieldKind::Raw, "Deposition"}),
              "field x is not the constant that it must be");
    EXPECT_EQ(faultOfValue("MacQPT0.1", {"", FieldKind::Raw, "MacQPT*"}), "");
    EXPECT_EQ(faultOfValue("QPT0.1", {"", FieldKind::Raw, "MacQPT*"}), "field x does not begin as it must");
}

TEST(FormBody, decodesEncodedValuesOnly)
{
    const FormReading form = readForm("a=%41&b=A%26B&C=%C3%A9&c=%2C%20",
                                      {{"a"}, {"b", FieldKind::QueryEncoded}, {"c", FieldKind::FullyEncoded}});
    EXPECT_EQ(form.fields, (Fields{{"a", "%41"}, {"b", "A&B&C=\xc3\xa9"}, {"c", ", "}}));
}

TEST(FormBody, readsAnOptionalLastField)
{
    const std::vector<FieldRule> rules{
        {"user"}, {"pass"}, {"id", FieldKind::Word}, {"comp", FieldKind::Word, {}, true}};
    EXPECT_EQ(readForm("user=a&pass=b&id=1", rules).fields.size(), 3U);
    EXPECT_EQ(valueOf(readForm("user=a&pass=b&id=1&comp=C02", rules).fields, "comp"), "C02");
    EXPECT_EQ(faultOf("user=a&pass=b&id=1&camp=C02", rules), "field id is followed by something else");
}

TEST(FormBody, refusesABrokenEscape)
{
    EXPECT_EQ(percentDecoded("%4"), std::nullopt);
    EXPECT_EQ(percentDecoded("%-1"), std::nullopt);
    EXPECT_EQ(percentDecoded("a%00b"), std::string("a\0b", 3));
}
