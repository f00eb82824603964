#include "harness/Table.h"

#include "support/TemporaryHome.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

using namespace Qt::StringLiterals;
using Bench::Goal;
using Bench::Row;

namespace {

std::vector<Row> rows()
{
    return {Row{.number = u"1"_s,
                .work = u"a work"_s,
                .beside = u"another program"_s,
                .unit = u"s"_s,
                .goal = Goal::RatioAtMost,
                .limit = 1.02,
                .ours = {2},
                .others = {1}},
            Row{.number = u"2"_s,
                .work = u"memory"_s,
                .unit = u"MB"_s,
                .goal = Goal::OursAtMost,
                .limit = 64,
                .ours = {12}}};
}

} // namespace

class BenchmarkTableTest : public TemporaryHome
{};

TEST_F(BenchmarkTableTest, HasALineForEachRowUnderItsHead)
{
    const QStringList lines = Bench::tableOf(rows()).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines.at(2).contains(u"another program"_s));
    EXPECT_TRUE(lines.at(2).contains(u"2.000 s"_s));
    EXPECT_TRUE(lines.at(2).contains(u"MISSED"_s));
    EXPECT_TRUE(lines.at(3).contains(u"<= 64 MB"_s));
    EXPECT_TRUE(lines.at(3).contains(u"met"_s));
    for (const QString& line : lines)
        EXPECT_EQ(line.size(), lines.front().size());
}

TEST_F(BenchmarkTableTest, IsWrittenAsJsonToo)
{
    const QString file = path(u"table.json"_s);
    ASSERT_TRUE(Bench::writeJson(rows(), file));
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QJsonObject document = QJsonDocument::fromJson(written.readAll()).object();
    const QJsonArray array = document.value(u"rows"_s).toArray();
    ASSERT_EQ(array.size(), 2);
    EXPECT_EQ(array.at(0).toObject().value(u"ratio"_s).toDouble(), 2);
    EXPECT_EQ(array.at(0).toObject().value(u"isMet"_s), QJsonValue(false));
    EXPECT_FALSE(array.at(1).toObject().contains(u"ratio"_s));
    EXPECT_FALSE(document.value(u"machine"_s).toString().isEmpty());
}

TEST_F(BenchmarkTableTest, SaysWhenTheJsonCannotBeWritten)
{
    EXPECT_FALSE(Bench::writeJson(rows(), path(u"missing/table.json"_s)));
}
