#include "harness/ChildRun.h"
#include "rows/Rows.h"

#include <QFile>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

enum class Shape { Lines, OneLine };

// The sample's testimony again and again, without cover page, phrase and months, so that all of it is searched: twice,
// for the date.
QByteArray testimony(const Bench::Context& context, Shape shape, qsizetype size)
{
    QFile sample(context.samples.filePath(u"Doe-Jane-2026-03-04.txt"_s));
    if (!sample.open(QIODevice::ReadOnly))
        Bench::fail(u"the sample transcript could not be read"_s);
    QByteArray pages = sample.readAll();
    pages = pages.mid(pages.indexOf("THE VIDEOGRAPHER"));
    pages.replace("deposition of", "testimony of");
    for (const char* month : {"January", "February", "March", "April", "May", "June", "July", "August", "September",
                              "October", "November", "December"}) {
        for (const QByteArray& word : {QByteArray(month), QByteArray(month).toLower(), QByteArray(month).toUpper()})
            pages.replace(word, "autumn");
    }
    pages.replace("\r\n", "\n");
    pages.replace('\n', shape == Shape::Lines ? "\r\n" : "  ");
    QByteArray text;
    while (text.size() < size)
        text += pages;
    text.truncate(size);
    return text;
}

QString madeTranscript(const Bench::Context& context, Shape shape, int megabytes)
{
    const auto size = static_cast<qsizetype>(megabytes * 1e6 * context.scale);
    const QString path = context.folder.filePath(
        u"transcript-%1-%2.txt"_s.arg(shape == Shape::Lines ? u"lines"_s : u"line"_s).arg(size));
    QFile file(path);
    const QByteArray text = testimony(context, shape, size);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        Bench::fail(path + u" could not be written"_s);
    return path;
}

void addRows(const Bench::Context& context, Shape shape, int megabytes, std::vector<Bench::Row>& rows)
{
    const bool isTheGoals = megabytes == 10;
    const QString what =
        u"%1 MB %2"_s.arg(megabytes).arg(shape == Shape::Lines ? u"of CRLF lines"_s : u"on a single line"_s);
    Bench::Row parsing{.number = u"10"_s,
                       .work =
                           u"reading a transcript's name and date, %1, nothing found: from path to result"_s.arg(what),
                       .unit = u"s"_s,
                       .goal = isTheGoals ? Bench::Goal::OursAtMost : Bench::Goal::None,
                       .limit = 1.0};
    Bench::Row process{.number = u"10 process"_s,
                       .work = u"the same, the whole process, %1"_s.arg(what),
                       .beside = u"wc -w"_s,
                       .unit = u"s"_s};
    const QString path = madeTranscript(context, shape, megabytes);
    Bench::inTurn(
        context.runs,
        [&] {
            const Bench::ChildRun run = Bench::runChild({context.program(u"quillpost-bench-parse"_s), path});
            parsing.ours.push_back(run.report().value(u"seconds"_s).toDouble());
            process.ours.push_back(run.seconds);
        },
        [&] {
            process.others.push_back(Bench::runChild({u"wc"_s, u"-w"_s, path}).seconds);
        });
    rows.push_back(parsing);
    rows.push_back(process);
}

} // namespace

std::vector<Bench::Row> Rows::transcriptParser(const Bench::Context& context)
{
    std::vector<Bench::Row> rows;
    for (const Shape shape : {Shape::Lines, Shape::OneLine}) {
        for (const int megabytes : {1, 10, 40})
            addRows(context, shape, megabytes, rows);
    }
    return rows;
}
