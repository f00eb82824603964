// Takes the rows of the performance table: each work done by this program's own code and by a public program that does
// the same, in turn, on the machine it runs on. scripts/bench builds everything and runs it.
#include "harness/ChildRun.h"
#include "harness/Context.h"
#include "harness/Table.h"
#include "rows/Rows.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>
#include <iterator>

namespace {

struct Work
{
    const char* number;
    const char* name;
    Bench::RowMaker make;
};

constexpr Work works[]{
    {"1", "conversion, with row 2", &Rows::conversion},
    {"3", "uploads", &Rows::uploads},
    {"4", "delivery", &Rows::delivery},
    {"5", "unpacking", &Rows::unpacking},
    {"6", "status reply", &Rows::statusReply},
    {"7", "start", &Rows::start},
    {"8", "list of jobs", &Rows::jobList},
    {"9", "heartbeat", &Rows::heartbeat},
    {"10", "transcript parser", &Rows::transcriptParser},
    {"11", "whole road", &Rows::wholeRoad},
};

void print(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout);
}

QStringList wantedRows(const QCommandLineParser& parser)
{
    QStringList known;
    for (const Work& work : works)
        known << QString::fromLatin1(work.number);
    QStringList wanted = parser.values(QStringLiteral("row"));
    wanted.replaceInStrings(QStringLiteral("^2$"), QStringLiteral("1"));
    for (const QString& number : std::as_const(wanted)) {
        if (!known.contains(number))
            Bench::fail(QStringLiteral("there is no row %1; known are %2").arg(number, known.join(u' ')));
    }
    return wanted.isEmpty() ? known : wanted;
}

Bench::Context contextOf(const QCommandLineParser& parser)
{
    Bench::Context context{.runs = parser.value(QStringLiteral("runs")).toInt(),
                           .scale = parser.value(QStringLiteral("scale")).toDouble(),
                           .programs = QDir(QCoreApplication::applicationDirPath()),
                           .samples = QDir(parser.value(QStringLiteral("samples"))),
                           .folder = QDir(QFileInfo(parser.value(QStringLiteral("folder"))).absoluteFilePath())};
    if (context.runs < 1 || context.scale <= 0)
        Bench::fail(QStringLiteral("--runs and --scale take numbers above 0"));
    if (!QFileInfo::exists(context.transcript()))
        Bench::fail(QStringLiteral("--samples has to name the folder of the sample transcripts"));
    if (!context.folder.mkpath(QStringLiteral(".")))
        Bench::fail(QStringLiteral("the folder %1 could not be made").arg(context.folder.path()));
    return context;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Measures this program beside public ones."));
    parser.addHelpOption();
    parser.addOptions(
        {{QStringLiteral("row"), QStringLiteral("This row alone; may be given again."), QStringLiteral("number")},
         {QStringLiteral("runs"), QStringLiteral("Pairs of runs; 5 unless given."), QStringLiteral("number"),
          QStringLiteral("5")},
         {QStringLiteral("scale"), QStringLiteral("Of all sizes; 1 unless given."), QStringLiteral("factor"),
          QStringLiteral("1")},
         {QStringLiteral("samples"), QStringLiteral("The folder of the sample transcripts."), QStringLiteral("folder"),
          QStringLiteral("samples")},
         {QStringLiteral("folder"), QStringLiteral("For the files that are worked on."), QStringLiteral("folder"),
          QStringLiteral("build/bench")},
         {QStringLiteral("json"), QStringLiteral("Where the figures go too."), QStringLiteral("file")}});
    parser.process(application);
    const Bench::Context context = contextOf(parser);
    const QStringList wanted = wantedRows(parser);

    std::vector<Bench::Row> rows;
    for (const Work& work : works) {
        if (!wanted.contains(QString::fromLatin1(work.number)))
            continue;
        std::fprintf(stderr, "row %s: %s\n", work.number, work.name);
        std::vector<Bench::Row> made = work.make(context);
        rows.insert(rows.end(), std::make_move_iterator(made.begin()), std::make_move_iterator(made.end()));
    }
    print(Bench::machineText() + u'\n' + Bench::tableOf(rows));
    const QString path = parser.value(QStringLiteral("json"));
    if (!path.isEmpty() && !Bench::writeJson(rows, path))
        Bench::fail(QStringLiteral("%1 could not be written").arg(path));
    return 0;
}
