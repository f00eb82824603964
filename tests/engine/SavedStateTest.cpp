#include "engine/SavedState.h"

#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class SavedStateTest : public TemporaryHome
{
protected:
    std::shared_ptr<Job> jobAt(int status, const QString& name)
    {
        auto job = Job::job();
        job->setTranscriptFile(path(name + u".txt"_s));
        job->insertObject(MediaFile::mediaFileWithPath(path(name + u".wav"_s)), 0);
        job->mediaFiles().first()->setStatus(status);
        job->setStatus(status);
        return job;
    }
    static QStringList names(const std::vector<std::shared_ptr<Job>>& jobs)
    {
        QStringList found;
        for (const auto& job : jobs)
            found.append(job->name());
        return found;
    }

    RecordedLog log;
    const QString file = path(u"temp/State_demo.archive"_s);
};

TEST_F(SavedStateTest, TheFileBearsTheUsersName)
{
    EXPECT_EQ(SavedState::filePath(u"/t"_s, u"demo"_s), u"/t/State_demo.archive"_s);
    EXPECT_EQ(SavedState::filePath(u"/t"_s, u"M\u00fcller & Co"_s), u"/t/State_M\u00fcller & Co.archive"_s);
    EXPECT_EQ(SavedState::filePath(u"/t"_s, u""_s), u"/t/State_.archive"_s);
}

TEST_F(SavedStateTest, AUserNameCannotLeaveTheFolderNorMeetAnotherUsersFile)
{
    EXPECT_EQ(SavedState::filePath(u"/t"_s, u"../../etc/x"_s), u"/t/State_..%2F..%2Fetc%2Fx.archive"_s);
    EXPECT_NE(SavedState::filePath(u"/t"_s, u"a%2Fb"_s), SavedState::filePath(u"/t"_s, u"a/b"_s));
    EXPECT_FALSE(SavedState::filePath(u"/t"_s, QString(u"a"_s + QChar(0) + u"b"_s)).contains(QChar(0)));
}

TEST_F(SavedStateTest, KeepsEveryLocalJobThatIsNotYetDownloadedAndNoOther)
{
    std::vector<std::shared_ptr<Job>> jobs;
    for (int status = 0; status <= 17; ++status)
        jobs.push_back(jobAt(status, QString::number(status)));
    auto fromServer = jobAt(11, u"server"_s);
    fromServer->setServerJob(true);
    jobs.push_back(fromServer);
    ASSERT_FALSE(SavedState::write(file, jobs));
    QStringList expected;
    for (int status = 0; status <= 15; ++status)
        expected.append(QString::number(status) + u".txt"_s);
    EXPECT_EQ(names(SavedState::read(file).jobs), expected);
}

TEST_F(SavedStateTest, NoJobsReplaceAnEarlierFile)
{
    ASSERT_FALSE(SavedState::write(file, {jobAt(2, u"a"_s)}));
    ASSERT_FALSE(SavedState::write(file, {}));
    EXPECT_TRUE(SavedState::read(file).jobs.empty());
    EXPECT_EQ(SavedState::read(file).problem, std::nullopt);
}

TEST_F(SavedStateTest, TheFileIsTheUsersAlone)
{
    ASSERT_FALSE(SavedState::write(file, {jobAt(2, u"a"_s)}));
    EXPECT_EQ(QFileInfo(file).permissions() & QFile::Permissions(0x0777), QFile::ReadUser | QFile::WriteUser);
    EXPECT_EQ(QDir(path(u"temp"_s)).entryList(QDir::Files | QDir::Hidden), QStringList{u"State_demo.archive"_s});
}

TEST_F(SavedStateTest, AFileThatCannotBeWrittenIsAnErrorThatNamesIt)
{
    const QString inTheWay = writeFile(u"occupied"_s, "a file, no folder");
    const auto error = SavedState::write(inTheWay + u"/State_demo.archive"_s, {jobAt(2, u"a"_s)});
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->localizedDescription.contains(u"State_demo.archive"_s));
    EXPECT_EQ(readFile(inTheWay), "a file, no folder");
}

TEST_F(SavedStateTest, AMissingFileHoldsNoJobsAndIsNothingToSpeakOf)
{
    EXPECT_TRUE(SavedState::read(file).jobs.empty());
    EXPECT_EQ(SavedState::read(file).problem, std::nullopt);
}

TEST_F(SavedStateTest, AFolderInTheFilesPlaceIsAProblem)
{
    ASSERT_TRUE(QDir().mkpath(file));
    EXPECT_TRUE(SavedState::read(file).jobs.empty());
    EXPECT_TRUE(SavedState::read(file).problem);
}

TEST_F(SavedStateTest, AnUnreadableFileIsAProblem)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads everything";
    ASSERT_FALSE(SavedState::write(file, {jobAt(2, u"a"_s)}));
    ASSERT_TRUE(QFile::setPermissions(file, QFile::WriteOwner));
    EXPECT_TRUE(SavedState::read(file).jobs.empty());
    EXPECT_TRUE(SavedState::read(file).problem);
}

TEST_F(SavedStateTest, GarbageIsAProblemAndHoldsNoJobs)
{
    QByteArray bytes(100'000, '\0');
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 7919 % 251);
    for (const QByteArray& garbage :
         {QByteArray(), QByteArray("{"), QByteArray("[]"), QByteArray("{}"), QByteArray("{\"version\":1}"),
          QByteArray("{\"version\":1,\"jobs\":5}"), QByteArray("{\"version\":2,\"jobs\":[]}"),
          QByteArray("{\"jobs\":[]}"), QByteArray("bplist00\x01\x02", 10), bytes, QByteArray(200'000, '[')}) {
        [[maybe_unused]] const QString written = writeFile(u"temp/State_demo.archive"_s, garbage);
        EXPECT_TRUE(SavedState::read(file).jobs.empty());
        EXPECT_TRUE(SavedState::read(file).problem) << garbage.left(30).constData();
    }
}

TEST_F(SavedStateTest, AJobThatCannotBeReadIsAProblemAndTheOthersAreKept)
{
    ASSERT_FALSE(SavedState::write(file, {jobAt(2, u"good"_s)}));
    QJsonObject state = QJsonDocument::fromJson(readFile(file)).object();
    QJsonArray jobs = state.value(u"jobs").toArray();
    jobs.prepend(QJsonObject{});
    jobs.prepend(7);
    state.insert(u"jobs"_s, jobs);
    [[maybe_unused]] const QString written = writeFile(u"temp/State_demo.archive"_s, QJsonDocument(state).toJson());
    EXPECT_EQ(names(SavedState::read(file).jobs), QStringList{u"good.txt"_s});
    EXPECT_TRUE(SavedState::read(file).problem);
}

TEST_F(SavedStateTest, AFileThatCannotBeReadIsKeptUnderANameThatNothingWritesTo)
{
    [[maybe_unused]] const QString written = writeFile(u"temp/State_demo.archive"_s, "garbage");
    const Error error = SavedState::keepAside(file, u"no reason"_s);
    EXPECT_EQ(error.domain, ErrorDomain::Platform);
    EXPECT_TRUE(error.localizedDescription.contains(file + u" cannot be read (no reason)"_s));
    EXPECT_FALSE(QFileInfo::exists(file));
    const QStringList kept = QDir(path(u"temp"_s)).entryList(QDir::Files);
    ASSERT_EQ(kept.size(), 1);
    EXPECT_TRUE(kept.first().startsWith(u"State_demo.archive.unreadable "_s));
    EXPECT_TRUE(error.localizedDescription.contains(kept.first()));
    EXPECT_EQ(readFile(path(u"temp/"_s + kept.first())), "garbage");
    EXPECT_TRUE(log.contains(error.localizedDescription));
    EXPECT_TRUE(SavedState::keepAside(path(u"temp/none"_s), u"gone"_s)
                    .localizedDescription.contains(u"It cannot be renamed"_s));
}

TEST_F(SavedStateTest, FilesThatCannotBeReadAtTheSameInstantAreAllKept)
{
    const QDateTime stillClock(QDate(2026, 3, 2), QTime(4, 5, 6, 7));
    const QStringList contents{u"one"_s, u"two"_s, u"three"_s};
    for (const QString& content : contents) {
        [[maybe_unused]] const QString written = writeFile(u"temp/State_demo.archive"_s, content.toUtf8());
        const Error error = SavedState::keepAside(file, u"no reason"_s, stillClock);
        EXPECT_TRUE(error.localizedDescription.contains(u"The file is kept as"_s));
        EXPECT_FALSE(QFileInfo::exists(file));
    }
    QStringList kept;
    for (const QString& name : QDir(path(u"temp"_s)).entryList(QDir::Files, QDir::Name))
        kept.append(QString::fromUtf8(readFile(path(u"temp/"_s + name))));
    kept.sort();
    EXPECT_EQ(kept, (QStringList{u"one"_s, u"three"_s, u"two"_s}));
}

} // namespace
