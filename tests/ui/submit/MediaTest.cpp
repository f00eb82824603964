#include "SubmitTest.h"

#include "support/GeneratedMedia.h"
#include "support/ScriptedFfmpeg.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class SubmitMedia : public SubmitTest
{
protected:
    SubmitMedia()
    {
        ffmpeg.putFirstOnPath();
        controller.showWindow();
    }

    Job::MediaFiles filesNamed(const QString& name)
    {
        Job::MediaFiles files;
        for (const auto& file : job().mediaFiles()) {
            if (file->name() == name)
                files << file;
        }
        return files;
    }

    ScriptedFfmpeg ffmpeg;
};

TEST_F(SubmitMedia, OfATranscriptAndARecordingOnlyTheRecordingIsAdded)
{
    controller.addMediaFiles({transcript(u"a.txt"_s), recording(u"b.mov"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList{u"b.mov"_s});
    EXPECT_EQ(controller.mediaMessage(), u"a.txt is a transcript, not a recording."_s);
}

TEST_F(SubmitMedia, NoTranscriptTypeIsEverARecordingAndAnyOtherTypeIs)
{
    QStringList paths;
    for (const QString& type :
         {u"txt"_s, u"PTF"_s, u"xml"_s, u"Asc"_s, u"ctx"_s, u"v1"_s, u"trn"_s, u"wpd"_s, u"ami"_s, u"prn"_s, u"pTx"_s})
        paths << recording(u"t."_s + type);
    controller.addMediaFiles(paths + QStringList{recording(u"film"_s), recording(u"film.doc"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList({u"film.doc"_s, u"film"_s}));
}

TEST_F(SubmitMedia, EachNewRecordingGoesToTheTop)
{
    controller.addMediaFiles({recording(u"a.mov"_s), recording(u"b.mov"_s)});
    controller.addMediaFiles({recording(u"c.mov"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList({u"c.mov"_s, u"b.mov"_s, u"a.mov"_s}));
}

TEST_F(SubmitMedia, TheSameFileInOtherLettersIsNotAddedAgainAndIsTold)
{
    controller.addMediaFiles({recording(u"a.mov"_s)});
    controller.addMediaFiles({path(u"a.mov"_s), recording(u"A.MOV"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList{u"a.mov"_s});
    EXPECT_EQ(controller.mediaMessage(), u"a.mov is in the list already.\nA.MOV is in the list already."_s);
    controller.addMediaFiles({recording(u"b.mov"_s)});
    EXPECT_EQ(controller.mediaMessage(), QString());
}

TEST_F(SubmitMedia, AFolderAndAFileThatIsGoneAreRefusedWithAMessage)
{
    ASSERT_TRUE(QDir().mkpath(path(u"tapes.mov"_s)));
    controller.addMediaFiles({path(u"tapes.mov"_s), path(u"gone.mov"_s), recording(u"a.mov"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList{u"a.mov"_s});
    EXPECT_EQ(controller.mediaMessage(),
              u"tapes.mov is a folder. Please add the recordings in it.\ngone.mov does not exist any more."_s);
}

TEST_F(SubmitMedia, OfManyRefusedFilesTheFirstAreNamedAndLongNamesAreCut)
{
    const QString longName = QString(60, u'x') + u".mov"_s;
    QStringList paths{path(longName)};
    for (int i = 0; i < 9; ++i)
        paths << path(u"gone%1.mov"_s.arg(i));
    controller.addMediaFiles(paths);
    EXPECT_EQ(controller.mediaMessage(), QString(24, u'x') + u"…"_s + QString(19, u'x') +
                                             u".mov does not exist any more.\ngone0.mov does not exist any more.\n"
                                             "gone1.mov does not exist any more.\n7 more were not added."_s);
    controller.addMediaFiles(paths.first(4));
    EXPECT_EQ(controller.mediaMessage().count(u'\n'), 3) << "four are all named";
}

TEST_F(SubmitMedia, ThePanelAddsWhatWasChosen)
{
    dialogs().choices << std::nullopt << std::optional<QStringList>({recording(u"a.mov"_s), recording(u"b.mov"_s)});
    controller.browseMediaFiles();
    EXPECT_EQ(namesOfRecordings(), QStringList());
    controller.browseMediaFiles();
    EXPECT_EQ(namesOfRecordings(), QStringList({u"b.mov"_s, u"a.mov"_s}));
}

TEST_F(SubmitMedia, RemovingTheLastRecordingMakesTheJobUnsubmittableAgain)
{
    controller.addTranscriptFile(transcript());
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    EXPECT_EQ(controller.missingText(), u"To submit, add a recording."_s);
    controller.addMediaFiles({recording(u"a.mov"_s), recording(u"b.mov"_s)});
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
    EXPECT_EQ(controller.missingText(), QString());
    controller.deleteSelectedMediaFiles(filesNamed(u"a.mov"_s));
    EXPECT_EQ(namesOfRecordings(), QStringList{u"b.mov"_s});
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
    controller.deleteSelectedMediaFiles(filesNamed(u"b.mov"_s));
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitMedia, EachAdditionReadsAllRecordingsOfTheJobInAThreadOfItsOwn)
{
    ffmpeg.waitsForRelease(u"first"_s);
    controller.addMediaFiles({recording(u"a.mov"_s)});
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.hasReached(u"first"_s); }));
    EXPECT_TRUE(controller.isReadingMediaFiles());
    EXPECT_EQ(controller.readingText(), u"Reading the recordings…"_s);
    controller.addMediaFiles({recording(u"b.mov"_s)});
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runningCount() == 2; })) << "two threads read at once";
    ffmpeg.release(u"first"_s);
    waitUntilRead();
    QStringList read;
    for (const QStringList& arguments : ffmpeg.runs())
        read << arguments.last().section(u'/', -1);
    read.sort();
    EXPECT_EQ(read, QStringList({u"a.mov"_s, u"a.mov"_s, u"b.mov"_s}));
    EXPECT_EQ(controller.readingText(), QString());
}

TEST_F(SubmitMedia, TheIndicatorStaysUntilTheLastThreadHasEnded)
{
    ffmpeg.whenProbing().shell("case $last in *a.mov) ;; *) touch $folder/reached; while [ ! -e $folder/go ]; do sleep "
                               "0.02; done;; esac");
    controller.addMediaFiles({recording(u"b.mov"_s)});
    ASSERT_TRUE(Waiting::until([&] { return QFile::exists(ffmpeg.file(u"reached"_s)); }));
    controller.deleteSelectedMediaFiles(filesNamed(u"b.mov"_s));
    QSignalSpy changes(&controller, &SubmitJobWindowController::isReadingMediaFilesChanged);
    controller.addMediaFiles({recording(u"a.mov"_s)});
    ASSERT_TRUE(Waiting::until([&] { return changes.count() >= 2; })) << "begun and ended";
    EXPECT_TRUE(controller.isReadingMediaFiles());
    QFile go(ffmpeg.file(u"go"_s));
    ASSERT_TRUE(go.open(QIODevice::WriteOnly));
    waitUntilRead();
}

TEST_F(SubmitMedia, DurationsReachTheListTheSummaryAndTheTotal)
{
    controller.processGetRates2Response(SubmitTexts::rates);
    ffmpeg.prints("  Duration: 01:30:00.00, start: 0.0\n");
    controller.addMediaFiles({recording(u"a.mov"_s)});
    waitUntilRead();
    const MediaFilesModel& model = controller.mediaFilesModel();
    EXPECT_EQ(model.index(0, MediaFilesModel::Name).data().toString(), u"a.mov"_s);
    EXPECT_EQ(model.index(0, MediaFilesModel::Duration).data().toString(), u"1:30:00"_s);
    EXPECT_EQ(model.index(0, MediaFilesModel::Size).data().toString(), QLocale().formattedDataSize(8));
    EXPECT_EQ(model.index(0, MediaFilesModel::Name).data(Qt::ToolTipRole).toString(), path(u"a.mov"_s));
    EXPECT_EQ(controller.mediaSummary(), u"1 recording, 1:30:00"_s);
    EXPECT_EQ(controller.totalText(), u"45.00 for 1:30:00 of recordings"_s);
}

TEST_F(SubmitMedia, ARecordingWhoseLengthCannotBeReadIsCountedInTheSummary)
{
    ffmpeg.whenProbing().shell("case $last in *a.mov) echo '  Duration: 00:00:59.00, x' >&2;; esac");
    controller.addMediaFiles({recording(u"a.mov"_s), recording(u"b.mov"_s)});
    waitUntilRead();
    EXPECT_EQ(controller.mediaSummary(), u"2 recordings, 0:00:59, 1 of unknown length"_s);
    EXPECT_EQ(controller.mediaFilesModel().index(0, MediaFilesModel::Duration).data().toString(), u"0:00:59"_s);
    EXPECT_EQ(controller.mediaFilesModel().index(1, MediaFilesModel::Duration).data().toString(), u"—"_s);
}

TEST_F(SubmitMedia, AnErrorOfTheReadingIsPresentedOnTheMainThreadUnderTheWindowsName)
{
    ffmpeg.prints("Header missing\n");
    controller.addMediaFiles({recording(u"a.mov"_s)});
    waitUntilRead();
    ASSERT_EQ(application.presented.size(), 1);
    EXPECT_EQ(application.presented.first(),
              (Error{ErrorDomain::SyncBase, 2, u"Submit job window: FFMPEG error( Header missing )"_s}));
}

TEST_F(SubmitMedia, ItsEndEndsTheReadingSoonAndLeavesNoFfmpegBehind)
{
    ffmpeg.ignoresRequestsToEnd().prints("  Duration: 00:00:01.00, x\n").hangs();
    auto brief = std::make_unique<SubmitJobWindowController>(application);
    brief->addMediaFiles({recording(u"a.mov"_s), recording(u"b.mov"_s)});
    brief->addMediaFiles({recording(u"c.mov"_s)});
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.runningCount() == 2; }));
    brief.reset();
    EXPECT_EQ(ffmpeg.runningCount(), 0);
    EXPECT_EQ(ffmpeg.runs().size(), 2) << "no further recording was begun";
    Waiting::turnMainLoopFor(std::chrono::milliseconds(50)); // what they posted finds nobody
}

TEST_F(SubmitMedia, RowsFollowFilesThatChangeOnAnotherThread)
{
    controller.addMediaFiles({recording(u"a.mov"_s), recording(u"b.mov"_s)});
    waitUntilRead();
    QSignalSpy changed(&controller.mediaFilesModel(), &QAbstractItemModel::dataChanged);
    const auto file = filesNamed(u"b.mov"_s).first();
    std::thread([&] { file->setSourceDuration(61.0F); }).join();
    ASSERT_TRUE(Waiting::until([&] { return changed.count() > 0; }));
    EXPECT_EQ(changed.first().at(0).value<QModelIndex>().row(), 1);
    EXPECT_EQ(changed.first().at(1).value<QModelIndex>().row(), 1);
    EXPECT_EQ(controller.mediaFilesModel().index(1, MediaFilesModel::Duration).data().toString(), u"0:01:01"_s);
}

TEST_F(SubmitMedia, TheListFollowsAdditionsAndRemovalsInTheOrderOfTheNames)
{
    MediaFilesModel& model = controller.mediaFilesModel();
    const auto names = [&] {
        QStringList shown;
        for (const auto& file : model.mediaFiles())
            shown << file->name();
        return shown;
    };
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    controller.addMediaFiles({recording(u"B.mov"_s), recording(u"d.mov"_s), recording(u"a.mov"_s)});
    EXPECT_EQ(inserted.count(), 1) << "in one go";
    EXPECT_EQ(names(), QStringList({u"a.mov"_s, u"B.mov"_s, u"d.mov"_s}));
    controller.deleteSelectedMediaFiles(filesNamed(u"B.mov"_s));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.first().at(1).toInt(), 1);
    controller.addMediaFiles({recording(u"c.mov"_s)});
    ASSERT_EQ(inserted.count(), 2);
    EXPECT_EQ(inserted.last().at(1).toInt(), 1);
    EXPECT_EQ(inserted.last().at(2).toInt(), 1) << "the other rows stay, and with them what is selected";
    EXPECT_EQ(names(), QStringList({u"a.mov"_s, u"c.mov"_s, u"d.mov"_s}));
    controller.setJob(Job::job());
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(SubmitMedia, FilesOfAJobThatWasReplacedReachTheListNoMore)
{
    controller.addMediaFiles({recording(u"a.mov"_s)});
    waitUntilRead();
    const auto before = controller.job();
    controller.setJob(Job::job());
    QSignalSpy values(&controller, &SubmitJobWindowController::jobValuesChanged);
    before->mediaFiles().first()->setSourceDuration(5.0F);
    before->setDeponentLastName(u"Doe"_s);
    EXPECT_EQ(values.count(), 0);
    EXPECT_EQ(controller.mediaFilesModel().rowCount(), 0);
}

class SubmitRealMedia : public SubmitTest
{};

TEST_F(SubmitRealMedia, ARealRecordingsLengthIsRead)
{
    controller.showWindow();
    controller.addMediaFiles({GeneratedMedia::sound(path(u"tone.wav"_s), 2)});
    waitUntilRead();
    EXPECT_EQ(job().mediaFiles().first()->sourceDuration(), 2.0F);
    EXPECT_THAT(job().mediaFiles().first()->streamsInfo().toStdString(), testing::HasSubstr("Audio"));
}

} // namespace
