#include "DownloadJobTest.h"

#include "demo-service/Zip.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;

namespace {

DemoService::Options firstJobNumbered(int depo)
{
    DemoService::Options options;
    options.firstDepoNumber = depo;
    return options;
}

} // namespace

DownloadJobTest::DownloadJobTest() : CommandsTest(firstJobNumbered(depo))
{
    EXPECT_EQ(service.addServerJob("Smith.txt"), depo);
    EXPECT_TRUE(QDir().mkpath(delivered(QString())));
}

std::shared_ptr<DownloadJobFilesCommand> DownloadJobTest::makeCommand() const
{
    const auto job = Job::job();
    job->setDepoNum(depo);
    return DownloadJobFilesCommand::downloadJobFilesCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job,
                                                                    delivered(QString()));
}

void DownloadJobTest::deliver(const Files& files)
{
    ASSERT_TRUE(service.setDeliverables(depo, files));
    run(makeCommand());
}

void DownloadJobTest::answerFacts(const std::vector<std::string>& replies)
{
    for (const std::string& reply : replies)
        service.addOverride(factsEndpoint, {.reply = reply, .times = 1});
}

void DownloadJobTest::answerNoJobFolder()
{
    service.addOverride(factsEndpoint, {.reply = ""});
}

QString DownloadJobTest::delivered(const QString& relative) const
{
    return path(relative.isEmpty() ? u"around/delivery"_s : u"around/delivery/"_s + relative);
}

bool DownloadJobTest::isDelivered(const QString& relative) const
{
    return QFileInfo::exists(delivered(relative));
}

QStringList DownloadJobTest::deliveredFiles() const
{
    QStringList files;
    const QDir folder(delivered(QString()));
    QDirIterator all(folder.path(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (all.hasNext())
        files << folder.relativeFilePath(all.next());
    files.sort();
    return files;
}

std::vector<std::string> DownloadJobTest::bodies(const std::string& endpoint) const
{
    std::vector<std::string> all;
    for (const auto& request : service.requests(endpoint))
        all.push_back(request.body);
    return all;
}

bool DownloadJobTest::isMarked() const
{
    const auto job = service.job(depo);
    return job && job->delivered;
}

TEST_F(DownloadJobTest, AJobOfThreeFilesIsListedFetchedReportedAndMarked)
{
    answerFacts({"Deposition", "Smith", "2011-03-04"});
    deliver({{"a.txt", "text"}, {"b.cms", "director"}, {"c.sync", "sync"}});

    const std::string start = "user=demo&pass=demo1234&depo=4711&";
    std::vector<std::string> expected;
    for (const char* number : {"0", "1", "2", "3"})
        expected.push_back(start + "file_num=" + number + "&just_get_name=1");
    for (const char* number : {"0", "1", "2", "3"})
        expected.push_back(start + "starting_point=0&file_num=" + number);
    EXPECT_EQ(bodies(downloadEndpoint), expected);
    EXPECT_EQ(bodies(factsEndpoint), (std::vector<std::string>{start + "field=delivery_option",
                                                               start + "field=deponent2", start + "field=depo_date"}));
    EXPECT_TRUE(service.refusals().empty());
    EXPECT_TRUE(isMarked());
    EXPECT_EQ(deliveredFiles(),
              (QStringList{u"Smith_030411_4711/Ostrova/OstrovizerDownloader.exe"_s,
                           u"Smith_030411_4711/Ostrova/autorun.inf"_s, u"Smith_030411_4711/Ostrova/c.sync"_s,
                           u"Smith_030411_4711/TrialDirector/b.cms"_s, u"Smith_030411_4711/Universal_ASCII/a.txt"_s}));
    EXPECT_EQ(readFile(delivered(u"Smith_030411_4711/TrialDirector/b.cms"_s)), "director");
}

TEST_F(DownloadJobTest, ProgressCountsFilesAndComesFromTheWorkersThread)
{
    answerNoJobFolder();
    deliver({{"a.txt", "text"}, {"b.cms", "director"}, {"c.sync", "sync"}});
    const auto progress = observer.calls(Kind::Progress);
    ASSERT_EQ(progress.size(), 4U);
    const double done[] = {0, 0, 1, 2}; // The last file done is reported by its index, so never 3.
    for (std::size_t i = 0; i < progress.size(); ++i) {
        EXPECT_EQ(progress[i].nowDL, done[i]);
        EXPECT_EQ(progress[i].totalDL, 3);
        EXPECT_EQ(progress[i].nowUL, 0);
        EXPECT_EQ(progress[i].totalUL, 0);
        EXPECT_FALSE(progress[i].onMainThread);
    }
    ASSERT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.calls().back().kind, Kind::Done);
    EXPECT_TRUE(observer.calls().back().onMainThread);
}

TEST_F(DownloadJobTest, TheStepsAreTakenInTheirOrderAndToldInTheLog)
{
    answerFacts({"Deposition", "Smith", "2011-03-04"});
    deliver({{"a.txt", "text"}});
    std::vector<std::string> endpoints;
    for (const auto& request : service.requests())
        endpoints.push_back(request.endpoint);
    EXPECT_EQ(endpoints, (std::vector<std::string>{downloadEndpoint, downloadEndpoint, factsEndpoint, factsEndpoint,
                                                   factsEndpoint, downloadEndpoint, "OstrovizerDownloader.exe",
                                                   "autorun.inf", "Korvane_ReadMe.txt", downloadEndpoint}));
    const QString text = log.text();
    qsizetype at = 0;
    for (const QString& line :
         {u"a.txt\n"_s, u"Start downloading file: "_s + delivered(u"Smith_030411_4711/Universal_ASCII/a.txt\n"_s),
          u"Done downloading file: "_s + delivered(u"Smith_030411_4711/Universal_ASCII/a.txt\n"_s),
          u"Start downloading file: "_s + hosts.fileUrl(u"/DemoDisc/OstrovizerDownloader.exe\n"_s),
          u"Done downloading file: "_s + hosts.fileUrl(u"/DemoDisc/OstrovizerDownloader.exe\n"_s),
          u"Start downloading file: "_s + hosts.fileUrl(u"/DemoDisc/autorun.inf\n"_s),
          u"Done downloading file: "_s + hosts.fileUrl(u"/Korvane_ReadMe.txt\n"_s),
          u"[info] [command] Changing job(DepoNum = 4711) server status to Done\n"_s,
          u"[info] [command] Changed job(DepoNum = 4711) server status to Done\n"_s}) {
        at = text.indexOf(line, at);
        ASSERT_GE(at, 0) << qPrintable(line);
    }
    EXPECT_FALSE(text.contains(u"demo1234"_s));
}

TEST_F(DownloadJobTest, AListedPathWithBackslashesLandsUnderItsLastName)
{
    answerNoJobFolder();
    deliver({{"C:\\out\\Smith_rl.xml", "real legal"}, {"Smith_RL.XML", "other"}});
    EXPECT_EQ(readFile(delivered(u"RealLegal/Smith_rl.xml"_s)), "real legal");
    EXPECT_EQ(readFile(delivered(u"Ostrova/Smith_RL.XML"_s)), "other");
}

TEST_F(DownloadJobTest, AFileOfAnotherTypeLiesInTheJobFolderItself)
{
    answerFacts({"ShortCaption", "Smith v. Jones"});
    deliver({{"notes.pdf", "pdf"}, {"README", "none"}});
    EXPECT_EQ(deliveredFiles(), (QStringList{u"Smith v. Jones/README"_s, u"Smith v. Jones/notes.pdf"_s}));
}

TEST_F(DownloadJobTest, AShortCaptionJobAsksWithAnEmptyPieceOfForm)
{
    answerFacts({"ShortCaption", "A v. B"});
    deliver({{"a.txt", "text"}});
    EXPECT_EQ(bodies(factsEndpoint),
              (std::vector<std::string>{"user=demo&pass=demo1234&depo=4711&field=delivery_option",
                                        "user=demo&pass=demo1234&depo=4711&"}));
    EXPECT_TRUE(isDelivered(u"A v. B/Universal_ASCII/a.txt"_s));
}

TEST_F(DownloadJobTest, AnEmptyCaptionIsNoCaption)
{
    answerFacts({"ShortCaption", ""});
    deliver({{"a.txt", "text"}});
    EXPECT_TRUE(isDelivered(u"no_caption/Universal_ASCII/a.txt"_s));
}

TEST_F(DownloadJobTest, AnyOtherDeliveryOptionHasNoJobFolder)
{
    for (const char* const option : {"", "deposition", "Deposition\n", "ShortCaption ", "Folder"}) {
        service.clearRequests();
        answerFacts({option});
        EXPECT_EQ(makeCommand()->retriveLocalIntermediatePath(), QString()) << option;
        EXPECT_EQ(service.count(factsEndpoint), 1);
    }
    answerNoJobFolder();
    deliver({{"a.txt", "text"}});
    EXPECT_EQ(deliveredFiles(), QStringList{u"Universal_ASCII/a.txt"_s});
}

TEST_F(DownloadJobTest, TheDateOfADepositionIsReadAsPeopleWriteIt)
{
    for (const char* date : {"2011-03-04", "March 4, 2011", "3/4/2011", "2011-03-04 10:30:00"}) {
        answerFacts({"Deposition", "Smith", date});
        const auto command = makeCommand();
        EXPECT_EQ(command->retriveLocalIntermediatePath(), u"Smith_030411_4711"_s) << date;
        EXPECT_EQ(command->result(), 0);
    }
    answerFacts({"Deposition", "Smith", "some day"});
    EXPECT_EQ(makeCommand()->retriveLocalIntermediatePath(), u"Smith_undated_4711"_s);
}

TEST_F(DownloadJobTest, AZipIsUnpackedAndDeleted)
{
    answerNoJobFolder();
    const std::string zip = DemoService::zipped({{"viewer/index.html", "<html>"}, {"start.exe", "program"}});
    deliver({{"Smith.zip", zip}});
    EXPECT_EQ(deliveredFiles(),
              (QStringList{u"Korvane/Korvane_ReadMe.txt"_s, u"Korvane/start.exe"_s, u"Korvane/viewer/index.html"_s}));
    EXPECT_EQ(readFile(delivered(u"Korvane/viewer/index.html"_s)), "<html>");
    EXPECT_TRUE(log.contains(u"[info] [command] Unzipping file: "_s + delivered(u"Korvane/Smith.zip\n"_s)));
    EXPECT_TRUE(log.contains(u"[info] [command] Unzipped sucessfully\n"_s));
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobTest, AnUnpackedFileReplacesAnOlderOne)
{
    answerNoJobFolder();
    writeFile(u"around/delivery/Korvane/start.exe"_s, "old");
    deliver({{"Smith.zip", DemoService::zipped({{"start.exe", "new"}})}});
    EXPECT_EQ(readFile(delivered(u"Korvane/start.exe"_s)), "new");
}

TEST_F(DownloadJobTest, AZipWhoseExtensionIsInCapitalsIsNotUnpacked)
{
    answerNoJobFolder();
    deliver({{"Smith.ZIP", DemoService::zipped({{"start.exe", "program"}})}});
    EXPECT_EQ(deliveredFiles(), (QStringList{u"Korvane/Korvane_ReadMe.txt"_s, u"Korvane/Smith.ZIP"_s}));
    EXPECT_FALSE(log.contains(u"Unzipping"_s));
}

TEST_F(DownloadJobTest, DemoDiscFilesAreAskedForAlwaysAndWrittenOnlyWhereAResultFileMadeTheirFolder)
{
    answerNoJobFolder();
    deliver({{"a.txt", "text"}});
    EXPECT_EQ(deliveredFiles(), QStringList{u"Universal_ASCII/a.txt"_s});
    EXPECT_EQ(service.count("OstrovizerDownloader.exe"), 1);
    EXPECT_EQ(service.count("autorun.inf"), 1);
    EXPECT_EQ(service.count("Korvane_ReadMe.txt"), 1);
    for (const QString& file :
         {u"Ostrova/OstrovizerDownloader.exe"_s, u"Ostrova/autorun.inf"_s, u"Korvane/Korvane_ReadMe.txt"_s})
        EXPECT_TRUE(log.contains(u"RegularDownloadFileCommand, unable to create file at path: "_s + delivered(file)));
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobTest, DemoDiscFilesLieBesideTheResultFilesOfTheirFolder)
{
    answerNoJobFolder();
    deliver({{"b.set", "set"}});
    EXPECT_EQ(deliveredFiles(),
              (QStringList{u"Ostrova/OstrovizerDownloader.exe"_s, u"Ostrova/autorun.inf"_s, u"Ostrova/b.set"_s}));
    EXPECT_TRUE(readFile(delivered(u"Ostrova/autorun.inf"_s)).contains("[autorun]"));
}

TEST_F(DownloadJobTest, AJobWithoutFilesIsMarkedAfterTheDemoDiscFiles)
{
    answerNoJobFolder();
    deliver({});
    EXPECT_EQ(bodies(downloadEndpoint),
              (std::vector<std::string>{"user=demo&pass=demo1234&depo=4711&file_num=0&just_get_name=1",
                                        "user=demo&pass=demo1234&depo=4711&starting_point=0&file_num=0"}));
    const auto progress = observer.calls(Kind::Progress);
    ASSERT_EQ(progress.size(), 1U);
    EXPECT_EQ(progress.front().nowDL, 0);
    EXPECT_EQ(progress.front().totalDL, 0);
    EXPECT_EQ(service.count("Korvane_ReadMe.txt"), 1);
    EXPECT_TRUE(isMarked());
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done);
}

TEST_F(DownloadJobTest, TheServicesOwnFullSetIsDelivered)
{
    run(makeCommand());
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done);
    EXPECT_TRUE(service.refusals().empty());
    EXPECT_TRUE(isMarked());
    for (const QString& folder : {u"Universal_ASCII"_s, u"Ostrova"_s, u"RealLegal"_s, u"Korvane"_s})
        EXPECT_TRUE(isDelivered(u"Server_030411_4711/"_s + folder)) << qPrintable(folder);
    EXPECT_FALSE(log.contains(u"[error]"_s));
}

TEST_F(DownloadJobTest, TheCommandTellsWhatItWasMadeFor)
{
    const auto job = Job::job();
    const auto command =
        DownloadJobFilesCommand::downloadJobFilesCommandWithUser(hosts, u"u"_s, u"p"_s, job, u"/delivery"_s);
    EXPECT_EQ(command->username(), u"u"_s);
    EXPECT_EQ(command->password(), u"p"_s);
    EXPECT_EQ(command->job(), job);
    EXPECT_EQ(command->folderPath(), u"/delivery"_s);
    EXPECT_EQ(command->url(), hosts.secureUrl(u"/saltine/test_downloadjob2.php"_s));
}

TEST_F(DownloadJobTest, ADeliveryWithoutAnObserverRunsToItsEnd)
{
    answerNoJobFolder();
    ASSERT_TRUE(service.setDeliverables(depo, {{"a.txt", "text"}}));
    makeCommand()->execute();
    EXPECT_TRUE(isMarked());
}
