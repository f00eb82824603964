#include "harness/BulkService.h"
#include "harness/ChildRun.h"
#include "harness/InputFiles.h"
#include "rows/Rows.h"

#include <QFile>
#include <QFileInfo>
#include <QUrlQuery>

using namespace Bench;

namespace {

constexpr int files = 20; // one of them the zip
constexpr int zipEntries = 40;

QByteArray contentsOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail(path + QStringLiteral(" cannot be read"));
    return file.readAll();
}

// Half text, half media, as unpacking alone is measured with.
QString zipOf(const Context& context, long long size)
{
    const QString path = context.folder.filePath(QStringLiteral("Delivery-%1.zip").arg(size));
    if (!QFileInfo::exists(path))
        (void)runChild({context.program(QStringLiteral("quillpost-bench-unzip")), QStringLiteral("--make"), path,
                        QString::number(zipEntries), QString::number(size)});
    return path;
}

struct Delivery
{
    std::vector<std::pair<QByteArray, QByteArray>> nameAndBytes;

    // As the service answers each step of a delivery.
    [[nodiscard]] QByteArray answer(const QByteArray& path, const QByteArray& form) const
    {
        const QUrlQuery fields(QString::fromUtf8(form));
        const auto value = [&](const char* name) { return fields.queryItemValue(QLatin1String(name)); };
        if (path.endsWith("test_downloadjob2.php")) {
            const auto number = static_cast<std::size_t>(value("file_num").toInt());
            if (number >= nameAndBytes.size())
                return {};
            return value("just_get_name") == u"1" ? nameAndBytes[number].first : nameAndBytes[number].second;
        }
        if (value("field") == u"delivery_option")
            return "Deposition";
        if (value("field") == u"deponent2")
            return "Doe";
        return value("field") == u"depo_date" ? "2026-03-04" : "of the file host";
    }
};

// What a user would do by hand: each file by curl, then the zip.
QString commandsBeside(const Delivery& delivery, int port)
{
    QStringList commands{QStringLiteral("set -e")};
    for (std::size_t i = 0; i < delivery.nameAndBytes.size(); ++i)
        commands << QStringLiteral("curl -k -s -S -f -o %1 -d 'user=demo&pass=demo1234&depo=883&starting_point=0&"
                                   "file_num=%2' https://127.0.0.1:%3/saltine/test_downloadjob2.php")
                        .arg(QString::fromUtf8(delivery.nameAndBytes[i].first))
                        .arg(i)
                        .arg(port);
    const QString zip = QString::fromUtf8(delivery.nameAndBytes.front().first);
    return (commands << QStringLiteral("unzip -q -o %1").arg(zip) << QStringLiteral("rm %1").arg(zip)).join(u'\n');
}

} // namespace

std::vector<Row> Rows::delivery(const Context& context)
{
    const auto all = static_cast<long long>(1000 * megabyte * context.scale);
    Delivery delivery;
    delivery.nameAndBytes.emplace_back("Doe.zip", contentsOf(zipOf(context, all * 4 / 10)));
    const long long rest = (all - delivery.nameAndBytes.front().second.size()) / (files - 1);
    for (int i = 1; i < files; ++i)
        delivery.nameAndBytes.emplace_back("Doe_" + QByteArray::number(i) + ".mpg",
                                           noise(rest, static_cast<unsigned>(i)));
    const auto answerer = [&](const QByteArray& path, const QByteArray& form) { return delivery.answer(path, form); };
    const BulkService secure(BulkService::Wire::Tls, answerer);
    const BulkService plain(BulkService::Wire::Plain, answerer);

    const QString work = QStringLiteral("a delivery of %1 files, %2 MB, with a zip of %3 MB unpacked")
                             .arg(files)
                             .arg(all / megabyte)
                             .arg(all * 4 / 10 / megabyte);
    Row wall{.number = QStringLiteral("4"),
             .work = work,
             .beside = QStringLiteral("curl of each, unzip"),
             .unit = QStringLiteral("s"),
             .goal = Goal::RatioAtMost,
             .limit = 1.05};
    Row flushed{.number = QStringLiteral("4 on disk"),
                .work = QStringLiteral("the same, until all of it is on disk"),
                .beside = QStringLiteral("the same, then sync"),
                .unit = wall.unit};
    Row memory{.number = QStringLiteral("4 memory"),
               .work = QStringLiteral("largest resident set of it"),
               .unit = QStringLiteral("MB")};
    const auto ours = [&] {
        const QString folder = freshFolder(context, QStringLiteral("delivery-ours"));
        settleDisk();
        const QJsonObject report =
            runChild({context.program(QStringLiteral("quillpost-bench-engine")), QStringLiteral("deliver"),
                      QStringLiteral("https://127.0.0.1:%1").arg(secure.port()),
                      QStringLiteral("http://127.0.0.1:%1").arg(plain.port()), folder, context.transcript()})
                .report();
        wall.ours.push_back(report.value(QStringLiteral("seconds")).toDouble());
        flushed.ours.push_back(wall.ours.back()); // A delivery ends when it is on disk.
        memory.ours.push_back(report.value(QStringLiteral("peakMegabytes")).toDouble());
    };
    const auto theirs = [&] {
        const QString folder = freshFolder(context, QStringLiteral("delivery-theirs"));
        settleDisk();
        const double seconds =
            runChild({QStringLiteral("sh"), QStringLiteral("-c"), commandsBeside(delivery, secure.port())},
                     {.folder = folder})
                .seconds;
        wall.others.push_back(seconds);
        flushed.others.push_back(seconds + runChild({QStringLiteral("sync"), QStringLiteral("-f"), folder}).seconds);
    };
    inTurn(context.runs, ours, theirs);
    return {wall, flushed, memory};
}
