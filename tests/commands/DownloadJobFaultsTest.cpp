#include "DownloadJobTest.h"

#include "commands/DeliveryPath.h"
#include "demo-service/Zip.h"

#include <QDir>
#include <QFileInfo>
#include <curl/curl.h>

using namespace Qt::StringLiterals;
using Kind = RecordingObserver::Kind;

class DownloadJobFaultsTest : public DownloadJobTest
{
protected:
    // Nothing was written beside the delivery folder.
    void expectNothingLeftTheDeliveryFolder() const
    {
        EXPECT_EQ(
            QDir(path(u"around"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
            QStringList{u"delivery"_s});
        EXPECT_FALSE(QFileInfo::exists(path(u"evil"_s)));
    }
    // Lets so many requests for names and contents pass as they are.
    void passDownloadRequests(int number) { service.addOverride(downloadEndpoint, {.times = number}); }
    // The lookup of the job folder failed: the delivery stopped there and was reported as failed, once.
    void expectStopped(int result)
    {
        ASSERT_EQ(observer.ends().size(), 1U);
        EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
        EXPECT_TRUE(observer.ends().at(0).onMainThread);
        EXPECT_EQ(lastResult, result);
        EXPECT_EQ(service.count(downloadEndpoint), 2);
        EXPECT_EQ(service.count("Korvane_ReadMe.txt"), 0);
        EXPECT_TRUE(deliveredFiles().isEmpty());
        EXPECT_FALSE(isMarked());
    }
    void deliverOneFileAndKeepResult()
    {
        observer.whenEnded = [this](const CUrlCommand& command) { lastResult = command.result(); };
        deliver({{"a.txt", "text"}});
    }

    int lastResult = 0;
};

TEST_F(DownloadJobFaultsTest, AFailedQuestionForTheDeliveryOptionStopsTheDelivery)
{
    service.addOverride(factsEndpoint, {.status = 500});
    deliverOneFileAndKeepResult();
    expectStopped(CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(service.count(factsEndpoint), 1);
}

TEST_F(DownloadJobFaultsTest, AFailedQuestionForTheDeponentStopsTheDelivery)
{
    answerFacts({"Deposition"});
    service.addOverride(factsEndpoint, {.status = 404});
    deliverOneFileAndKeepResult();
    expectStopped(CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(service.count(factsEndpoint), 2);
}

TEST_F(DownloadJobFaultsTest, AFailedQuestionForTheDateStopsTheDelivery)
{
    answerFacts({"Deposition", "Smith"});
    service.addOverride(factsEndpoint, {.status = 503});
    deliverOneFileAndKeepResult();
    expectStopped(CURLE_HTTP_RETURNED_ERROR);
    EXPECT_EQ(service.count(factsEndpoint), 3);
}

TEST_F(DownloadJobFaultsTest, AFailedQuestionForTheCaptionStopsTheDelivery)
{
    answerFacts({"ShortCaption"});
    service.addOverride(factsEndpoint, {.location = "/saltine/miscstuff.php"});
    deliverOneFileAndKeepResult();
    expectStopped(CURLE_TOO_MANY_REDIRECTS);
}

TEST_F(DownloadJobFaultsTest, AServiceThatIsGoneEndsTheDeliveryInAFailure)
{
    observer.whenEnded = [this](const CUrlCommand& command) { lastResult = command.result(); };
    service.stop();
    run(makeCommand());
    ASSERT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
    EXPECT_EQ(lastResult, CURLE_COULDNT_CONNECT);
    EXPECT_TRUE(deliveredFiles().isEmpty());
}

TEST_F(DownloadJobFaultsTest, WhatCameOfAFileThatIsCutLiesBesideItsNameAndTheDeliveryGoesOn)
{
    answerNoJobFolder();
    passDownloadRequests(3);
    service.addOverride(downloadEndpoint, {.cutAt = 4, .times = 1});
    deliver({{"a.txt", "0123456789"}, {"b.txt", "whole"}});
    EXPECT_EQ(readFile(delivered(u"Universal_ASCII/a.txt.incomplete"_s)), "0123");
    EXPECT_FALSE(isDelivered(u"Universal_ASCII/a.txt"_s));
    EXPECT_EQ(readFile(delivered(u"Universal_ASCII/b.txt"_s)), "whole");
    EXPECT_TRUE(isMarked());
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done); // The failure of one file is not the delivery's.
}

TEST_F(DownloadJobFaultsTest, AFileThatTheServiceRefusesIsNotUnderItsNameAndTheDeliveryGoesOn)
{
    answerNoJobFolder();
    passDownloadRequests(3);
    service.addOverride(downloadEndpoint, {.status = 500, .reply = "words", .times = 1});
    deliver({{"a.txt", "0123456789"}, {"b.txt", "whole"}});
    EXPECT_FALSE(isDelivered(u"Universal_ASCII/a.txt"_s));
    EXPECT_TRUE(isDelivered(u"Universal_ASCII/a.txt.incomplete"_s));
    EXPECT_EQ(readFile(delivered(u"Universal_ASCII/b.txt"_s)), "whole");
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobFaultsTest, DemoDiscFilesThatFailAreNoFailure)
{
    answerNoJobFolder();
    service.addOverride("autorun.inf", {.status = 404});
    service.addOverride("OstrovizerDownloader.exe", {.reset = true});
    deliver({{"a.set", "set"}});
    EXPECT_EQ(deliveredFiles(), (QStringList{u"Ostrova/OstrovizerDownloader.exe.incomplete"_s, u"Ostrova/a.set"_s,
                                             u"Ostrova/autorun.inf.incomplete"_s}));
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done);
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobFaultsTest, AFailedMarkIsNoFailure)
{
    answerNoJobFolder();
    passDownloadRequests(3);
    service.addOverride(downloadEndpoint, {.status = 500});
    deliver({{"a.txt", "text"}});
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Done);
    EXPECT_FALSE(isMarked());
}

TEST_F(DownloadJobFaultsTest, AFolderThatCannotBeMadeSendsABodylessRequestAndTheDeliveryGoesOn)
{
    answerNoJobFolder();
    writeFile(u"around/delivery/LiveNote"_s, "a file in the way");
    deliver({{"a.ptf", "ptf"}, {"b.txt", "text"}});
    EXPECT_TRUE(log.contains(u"DownloadCommand for depo=4711, file=0, unable to create folder at path: "_s +
                             delivered(u"LiveNote\n"_s)) ||
                log.contains(u"DownloadCommand for depo=4711, file=0, unable to create file at path: "_s +
                             delivered(u"LiveNote/a.ptf\n"_s)));
    const auto requests = service.requests(downloadEndpoint);
    ASSERT_EQ(requests.size(), 6U);
    EXPECT_EQ(requests.at(3).body, "");
    EXPECT_EQ(requests.at(3).method, "GET");
    EXPECT_EQ(readFile(delivered(u"LiveNote"_s)), "a file in the way");
    EXPECT_EQ(readFile(delivered(u"Universal_ASCII/b.txt"_s)), "text");
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobFaultsTest, AZipThatCannotBeUnpackedIsKept)
{
    answerNoJobFolder();
    std::string bytes;
    for (unsigned i = 0; i < 4000; ++i)
        bytes += static_cast<char>(i * i * 31 % 253);
    std::string zip = DemoService::zipped({{"a.bin", bytes}});
    constexpr std::size_t localHeader = 30 + 5; // with the name
    zip.replace(localHeader + 200, 100, std::string(100, '\x55'));
    deliver({{"Smith.zip", zip}});
    EXPECT_TRUE(log.contains(u"[error] [command] Unzip error\n"_s));
    EXPECT_FALSE(log.contains(u"Unzipped sucessfully"_s));
    EXPECT_EQ(readFile(delivered(u"Korvane/Smith.zip"_s)).toStdString(), zip);
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobFaultsTest, AZipThatDoesNotOpenIsLeftSilently)
{
    answerNoJobFolder();
    deliver({{"Smith.zip", "not a zip"}});
    EXPECT_TRUE(log.contains(u"Unzipping file: "_s));
    EXPECT_FALSE(log.contains(u"Unzip error"_s));
    EXPECT_FALSE(log.contains(u"Unzipped sucessfully"_s));
    EXPECT_EQ(readFile(delivered(u"Korvane/Smith.zip"_s)), "not a zip");
}

TEST_F(DownloadJobFaultsTest, AnEntryOfAZipThatWouldLeaveItsFolderIsPassedOver)
{
    answerFacts({"ShortCaption", "caption"});
    deliver({{"Smith.zip", DemoService::zipped({{"../../../evil.txt", "evil"}, {"good.txt", "good"}})}});
    expectNothingLeftTheDeliveryFolder();
    EXPECT_EQ(deliveredFiles(), (QStringList{u"caption/Korvane/Korvane_ReadMe.txt"_s, u"caption/Korvane/good.txt"_s}));
}

TEST_F(DownloadJobFaultsTest, HostileListedNamesStayInTheDeliveryFolder)
{
    answerNoJobFolder();
    const std::string absolute = path(u"evil/a.txt"_s).toStdString();
    deliver({{"../../b.txt", "b"},
             {"..\\..\\..\\c.txt", "c"},
             {absolute, "a"},
             {std::string("d\0.txt", 6), "d"},
             {std::string(5000, 'e') + ".txt", "e"},
             {"~/f.txt", "f"}});
    expectNothingLeftTheDeliveryFolder();
    QStringList expected;
    for (const QString& name : {u"a.txt"_s, u"b.txt"_s, u"c.txt"_s, u"d.txt"_s,
                                DeliveryPath::fileName(QString(5000, u'e') + u".txt"_s), u"f.txt"_s})
        expected << u"Universal_ASCII/"_s + name;
    EXPECT_EQ(deliveredFiles(), expected);
    EXPECT_TRUE(isMarked());
}

TEST_F(DownloadJobFaultsTest, AListedNameOfWhichNothingIsLeftHarmsNoOtherFile)
{
    answerFacts({"ShortCaption", "caption"});
    deliver({{"..", "x"}, {"/", "x"}, {"\\", "x"}, {".", "x"}, {std::string(1, '\0'), "x"}, {"a.txt", "text"}});
    expectNothingLeftTheDeliveryFolder();
    EXPECT_EQ(deliveredFiles(), QStringList{u"caption/Universal_ASCII/a.txt"_s});
    EXPECT_TRUE(isMarked());
}

struct JobFolderCase
{
    std::vector<std::string> facts;
    // With its slash; empty for the delivery folder itself.
    QString folder;
};

// In a list of tests.
void PrintTo(const JobFolderCase& each, std::ostream* stream)
{
    *stream << testing::PrintToString(each.facts.at(1).substr(0, 20));
}

class HostileJobFolderTest : public DownloadJobFaultsTest, public testing::WithParamInterface<JobFolderCase>
{};

TEST_P(HostileJobFolderTest, StaysInTheDeliveryFolder)
{
    answerFacts(GetParam().facts);
    deliver({{"a.txt", "text"}});
    expectNothingLeftTheDeliveryFolder();
    EXPECT_EQ(deliveredFiles(), QStringList{GetParam().folder + u"Universal_ASCII/a.txt"_s});
    EXPECT_TRUE(isMarked());
}

INSTANTIATE_TEST_SUITE_P(
    Table, HostileJobFolderTest,
    testing::Values(JobFolderCase{{"Deposition", "../../evil", "2011-03-04"}, u".._.._evil_030411_4711/"_s},
                    JobFolderCase{{"Deposition", "/evil", "2011-03-04"}, u"_evil_030411_4711/"_s},
                    JobFolderCase{{"ShortCaption", ".."}, u"__/"_s},
                    JobFolderCase{{"ShortCaption", "../evil"}, u".._evil/"_s},
                    JobFolderCase{{"ShortCaption", "a/../../../evil"}, u"a_.._.._.._evil/"_s},
                    JobFolderCase{{"ShortCaption", "/etc/evil"}, u"_etc_evil/"_s},
                    JobFolderCase{{"ShortCaption", std::string(".\0./evil", 8)}, u".._evil/"_s},
                    JobFolderCase{{"ShortCaption", "A/B"}, u"A/B/"_s}, JobFolderCase{{"ShortCaption", "/"}, u"_/"_s},
                    JobFolderCase{{"ShortCaption", "."}, QString()},
                    JobFolderCase{{"ShortCaption", std::string(5000, 'x')},
                                  DeliveryPath::jobFolder(QString(5000, u'x')) + u'/'}));

TEST_F(DownloadJobFaultsTest, AJobFolderDeeperThanAnyFileSystemTakesBecomesOne)
{
    std::string deep;
    for (int i = 0; i < 2500; ++i)
        deep += "d/";
    answerFacts({"ShortCaption", deep});
    deliver({{"a.txt", "text"}});
    expectNothingLeftTheDeliveryFolder();
    EXPECT_EQ(deliveredFiles(),
              QStringList{DeliveryPath::jobFolder(QString::fromStdString(deep)) + u"/Universal_ASCII/a.txt"_s});
}

TEST_F(DownloadJobFaultsTest, CancellingEndsADeliveryThatHangsAndMarksNothing)
{
    answerNoJobFolder();
    ASSERT_TRUE(service.setDeliverables(depo, {{"a.txt", "text"}, {"b.txt", "text"}}));
    passDownloadRequests(3);
    service.addOverride(downloadEndpoint, {.hang = true});
    const auto command = makeCommand();
    command->setObserver(&observer);
    processor.postCommand(command);
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    processor.cancelRunningCommands();
    ASSERT_TRUE(Waiting::until([&] { return processor.currentNumOfCommandThreads() == 0; }));
    ASSERT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
    EXPECT_EQ(command->result(), CURLE_ABORTED_BY_CALLBACK);
    EXPECT_EQ(service.count(downloadEndpoint), 4); // Nothing was asked after the request that hung.
    EXPECT_EQ(deliveredFiles(), QStringList{u"Universal_ASCII/a.txt.incomplete"_s}); // Nor was the next file begun.
    EXPECT_EQ(service.count("Korvane_ReadMe.txt"), 0);
    EXPECT_FALSE(isMarked());
}

TEST_F(DownloadJobFaultsTest, ADeliveryCancelledBeforeItBeginsAsksNothing)
{
    const auto command = makeCommand();
    command->cancel();
    run(command);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
    EXPECT_TRUE(service.requests().empty());
    EXPECT_TRUE(deliveredFiles().isEmpty());
}

TEST_F(DownloadJobFaultsTest, WhatIsMissingOrBrokenIsToldAfterwards)
{
    QStringList problems;
    observer.whenEnded = [&](CUrlCommand& command) {
        problems = dynamic_cast<DownloadJobFilesCommand&>(command).problems();
    };
    answerNoJobFolder();
    passDownloadRequests(4);                                            // three names and the end of the list
    service.addOverride(downloadEndpoint, {.status = 500, .times = 1}); // the first file
    passDownloadRequests(2);
    service.addOverride(downloadEndpoint, {.status = 503, .times = 1}); // the mark
    deliver({{"a.txt", "text"}, {"b.txt", "text"}, {"c.zip", "PK\x03\x04 no archive"}});
    ASSERT_EQ(problems.size(), 2);
    EXPECT_TRUE(problems.at(0).contains(u"a.txt was not received whole: cURL error( 22, "_s))
        << qPrintable(problems[0]);
    EXPECT_TRUE(problems.at(1).contains(u"the service was not told of the delivery"_s)) << qPrintable(problems[1]);
}

TEST_F(DownloadJobFaultsTest, AListThatBreaksOffIsToldAfterwards)
{
    QStringList problems;
    observer.whenEnded = [&](CUrlCommand& command) {
        problems = dynamic_cast<DownloadJobFilesCommand&>(command).problems();
    };
    answerNoJobFolder();
    passDownloadRequests(1);
    service.addOverride(downloadEndpoint, {.status = 500, .times = 1});
    deliver({{"a.txt", "text"}, {"b.txt", "text"}});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.at(0).startsWith(u"the list of files broke off after 1: "_s)) << qPrintable(problems[0]);
}

class DeliveryProblemsTest : public DownloadJobFaultsTest
{
protected:
    QStringList problemsOf(const Files& files)
    {
        QStringList problems;
        observer.whenEnded = [&](CUrlCommand& command) {
            problems = dynamic_cast<DownloadJobFilesCommand&>(command).problems();
            lastResult = command.result();
        };
        deliver(files);
        return problems;
    }
};

TEST_F(DeliveryProblemsTest, WhatIsLeftOfAnEarlierAttemptGoesWhenTheFileComesWhole)
{
    answerNoJobFolder();
    writeFile(u"around/delivery/Universal_ASCII/a.txt.incomplete"_s, "te");
    EXPECT_EQ(problemsOf({{"a.txt", "text"}}), QStringList());
    EXPECT_EQ(deliveredFiles(), QStringList{u"Universal_ASCII/a.txt"_s});
}

TEST_F(DeliveryProblemsTest, AnIncompleteFileOfTheLongestNameHasRoomForItsMark)
{
    answerNoJobFolder();
    passDownloadRequests(2);
    service.addOverride(downloadEndpoint, {.cutAt = 2, .times = 1});
    const QStringList problems = problemsOf({{std::string(251, 'e') + ".txt", "text"}});
    EXPECT_EQ(problems.size(), 1);
    EXPECT_EQ(deliveredFiles(), QStringList{u"Universal_ASCII/"_s + QString(244, u'e') + u".incomplete"_s});
}

TEST_F(DeliveryProblemsTest, AnEmptyFileIsTold)
{
    answerNoJobFolder();
    const QStringList problems = problemsOf({{"a.txt", ""}});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems[0].endsWith(u"a.txt came empty"_s)) << qPrintable(problems[0]);
    EXPECT_TRUE(isDelivered(u"Universal_ASCII/a.txt"_s));
}

TEST_F(DeliveryProblemsTest, AListWithoutFilesIsTold)
{
    answerNoJobFolder();
    EXPECT_EQ(problemsOf({}), QStringList{u"the service lists no files"_s});
}

TEST_F(DeliveryProblemsTest, NamesAreToldWithoutTheirControlCharacters)
{
    answerNoJobFolder();
    const QStringList problems = problemsOf({{"a\x1b[2J.txt", ""}});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems[0].endsWith(u"a\ufffd[2J.txt came empty"_s)) << qPrintable(problems[0]);
}

// As a service does that answers every request with the same error.
TEST_F(DeliveryProblemsTest, AListOfTheSameWordsWithoutEndFailsTheDelivery)
{
    service.addOverride(downloadEndpoint, {.reply = "Invalid user name or password"});
    deliverOneFileAndKeepResult();
    ASSERT_EQ(observer.ends().size(), 1U);
    EXPECT_EQ(observer.ends().at(0).kind, Kind::Failed);
    EXPECT_EQ(lastResult, CURLE_WEIRD_SERVER_REPLY);
    EXPECT_EQ(service.count(downloadEndpoint), 20);
    EXPECT_EQ(service.count(factsEndpoint), 0);
    EXPECT_TRUE(deliveredFiles().isEmpty());
    EXPECT_FALSE(isMarked());
}

TEST_F(DeliveryProblemsTest, ANameMayBeListedAFewTimes)
{
    answerNoJobFolder();
    EXPECT_EQ(problemsOf(Files(19, {"a.txt", "text"})), QStringList());
    EXPECT_EQ(lastResult, 0);
    EXPECT_TRUE(isMarked());
}

TEST_F(DeliveryProblemsTest, AFolderTakenAwayDuringTheDownloadIsTold)
{
    answerNoJobFolder();
    passDownloadRequests(2);
    service.addOverride(downloadEndpoint, {.hang = true, .times = 1});
    QStringList problems;
    observer.whenEnded = [&](CUrlCommand& command) {
        problems = dynamic_cast<DownloadJobFilesCommand&>(command).problems();
    };
    ASSERT_TRUE(service.setDeliverables(depo, {{"a.txt", "text"}}));
    const auto command = makeCommand();
    command->setObserver(&observer);
    processor.postCommand(command);
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    ASSERT_TRUE(QDir(delivered(QString())).removeRecursively());
    service.releaseHangs();
    ASSERT_TRUE(Waiting::until([&] { return observer.ends().size() == 1; }));
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems[0].endsWith(u"a.txt could not be written whole: its folder was taken away meanwhile"_s))
        << qPrintable(problems[0]);
}

TEST_F(DownloadJobFaultsTest, AWholeDeliveryHasNoProblems)
{
    QStringList problems{u"not asked"_s};
    observer.whenEnded = [&](CUrlCommand& command) {
        problems = dynamic_cast<DownloadJobFilesCommand&>(command).problems();
    };
    answerNoJobFolder();
    deliver({{"a.txt", "text"}});
    EXPECT_EQ(problems, QStringList());
}

TEST_F(DeliveryProblemsTest, WhyAZipIsNotUnpackedIsTold)
{
    answerNoJobFolder();
    std::string zip = DemoService::zipped({{"a.bin", "data"}});
    zip.replace(zip.find("PK\x01\x02") + 24, 4, "\xff\xff\xff\x7f");
    const QStringList problems = problemsOf({{"Smith.zip", zip}});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(
        problems.at(0).contains(u"Smith.zip could not be unpacked: The zip file unpacks to 2147483648 bytes, "_s))
        << qPrintable(problems[0]);
    EXPECT_EQ(readFile(delivered(u"Korvane/Smith.zip"_s)).toStdString(), zip);
}

TEST_F(DeliveryProblemsTest, EntriesOfAZipThatArePassedOverAreTold)
{
    answerNoJobFolder();
    const QStringList problems =
        problemsOf({{"Smith.zip", DemoService::zipped({{"../evil.txt", "evil"}, {"good.txt", "good"}})}});
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.at(0).startsWith(u"1 entries of "_s)) << qPrintable(problems[0]);
}
