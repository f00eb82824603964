#include "harness/ChildRun.h"
#include "rows/Rows.h"

#include <QFileInfo>
#include <QStringList>

#include <cstdint>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int entries = 2000;
constexpr double bytes = 400e6;

QString madeArchive(const Bench::Context& context)
{
    const auto size = static_cast<std::uint64_t>(bytes * context.scale);
    const QString archive = context.folder.filePath(u"unpacking-%1.zip"_s.arg(size));
    if (!QFileInfo::exists(archive))
        (void)Bench::runChild({context.program(u"quillpost-bench-unzip"_s), u"--make"_s, archive,
                               QString::number(entries), QString::number(size)});
    return archive;
}

// Folders that nothing was unpacked into before. They are kept to the end: a file system that has just let go of
// thousands of files is slower to make new ones.
class FreshFolders
{
public:
    explicit FreshFolders(const Bench::Context& context) : m_folder(context.folder.filePath(u"unpacked"_s))
    {
        m_folder.removeRecursively();
    }
    ~FreshFolders() { m_folder.removeRecursively(); }
    FreshFolders(const FreshFolders&) = delete;
    FreshFolders& operator=(const FreshFolders&) = delete;

    QString next()
    {
        const QString path = m_folder.filePath(QString::number(++m_count));
        m_folder.mkpath(path);
        // What was written before is on the disk, so that no run pays for the one before it.
        ::sync();
        return path;
    }

private:
    QDir m_folder;
    int m_count = 0;
};

struct Work
{
    QString beside;
    QStringList before; // the arguments in front of the folder's path
};

void addRows(const Bench::Context& context, const QString& archive, const Work& work, std::vector<Bench::Row>& rows)
{
    FreshFolders folders(context);
    Bench::Row time{.number = u"5 "_s + work.beside,
                    .work = u"unpacking a zip file of 400 MB in 2,000 entries: half text, deflated; a quarter media, "
                            "deflated; a quarter media, stored; start of the program included"_s,
                    .beside = work.beside,
                    .unit = u"s"_s,
                    .goal = Bench::Goal::RatioAtMost,
                    .limit = 1.0};
    Bench::Row memory{.number = u"5 memory, "_s + work.beside,
                      .work = u"the same, largest resident set"_s,
                      .beside = work.beside,
                      .unit = u"MB"_s};
    const auto take = [&](const QStringList& command, std::vector<double>& seconds, std::vector<double>& megabytes) {
        const Bench::ChildRun run = Bench::runChild(command + QStringList{folders.next()});
        seconds.push_back(run.seconds);
        megabytes.push_back(run.peakMegabytes);
    };
    Bench::inTurn(
        context.runs,
        [&] {
            take({context.program(u"quillpost-bench-unzip"_s), archive}, time.ours, memory.ours);
        },
        [&] { take(work.before, time.others, memory.others); });
    rows.push_back(time);
    rows.push_back(memory);
}

} // namespace

std::vector<Bench::Row> Rows::unpacking(const Bench::Context& context)
{
    const QString archive = madeArchive(context);
    std::vector<Bench::Row> rows;
    addRows(context, archive, {u"unzip"_s, {u"unzip"_s, u"-q"_s, u"-o"_s, archive, u"-d"_s}}, rows);
    addRows(context, archive, {u"bsdtar"_s, {u"bsdtar"_s, u"-x"_s, u"-f"_s, archive, u"-C"_s}}, rows);
    return rows;
}
