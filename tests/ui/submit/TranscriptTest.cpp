#include "SubmitTest.h"

#include "transcript/TranscriptFileType.h"

#include <QDir>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

class SubmitTranscript : public SubmitTest
{
protected:
    SubmitTranscript() { controller.showWindow(); }

    void chooses(const QStringList& paths) { dialogs().choices << std::optional<QStringList>(paths); }
    void expectWarnings(const QStringList& texts)
    {
        QStringList shown;
        for (const auto& [title, text] : application.scriptedDialogs.warnings) {
            EXPECT_EQ(title, u"Warning"_s);
            shown << text;
        }
        EXPECT_EQ(shown, texts);
    }
};

TEST_F(SubmitTranscript, PrefillsNamesAndDateFromAParsedTranscript)
{
    const QString path = transcript();
    controller.addTranscriptFile(path);
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(controller.transcriptText(), path);
    EXPECT_EQ(controller.deponentFirstName(), u"Jane Q."_s);
    EXPECT_EQ(controller.deponentLastName(), u"Doe"_s);
    EXPECT_EQ(controller.depositionDate(), QDate(2026, 3, 4));
    EXPECT_EQ(job().depositionDate().time(), QTime(12, 0));
    EXPECT_EQ(controller.windowTitle(), u"Doe.txt - Submit Job - Quillpost"_s);
    expectWarnings({});
}

TEST_F(SubmitTranscript, ASecondTranscriptKeepsTheFirstNamesButReplacesTheDate)
{
    controller.addTranscriptFile(transcript());
    controller.addTranscriptFile(writeFile(u"Smith.txt"_s, SubmitTexts::otherCover));
    EXPECT_EQ(controller.deponentFirstName(), u"Jane Q."_s);
    EXPECT_EQ(controller.deponentLastName(), u"Doe"_s);
    EXPECT_EQ(controller.depositionDate(), QDate(2026, 5, 7));
}

TEST_F(SubmitTranscript, OnlyTheEmptyNameIsPrefilled)
{
    controller.setDeponentLastName(u"Miller"_s);
    controller.addTranscriptFile(transcript());
    EXPECT_EQ(controller.deponentFirstName(), u"Jane Q."_s);
    EXPECT_EQ(controller.deponentLastName(), u"Miller"_s);
}

TEST_F(SubmitTranscript, ATranscriptWithoutADateLeavesTheDate)
{
    controller.setDepositionDate(QDate(2020, 2, 1));
    controller.addTranscriptFile(writeFile(u"a.txt"_s, "Deposition of Jane Q. Doe\r\n"));
    EXPECT_EQ(controller.depositionDate(), QDate(2020, 2, 1));
    EXPECT_EQ(controller.transcriptMessage(), QString());
}

TEST_F(SubmitTranscript, ADateThatIsNoDayOfTheCalendarLeavesTheDateAndIsTold)
{
    controller.setDepositionDate(QDate(2020, 2, 1));
    controller.addTranscriptFile(writeFile(u"a.txt"_s, "Deposition of Jane Q. Doe\r\n\r\nFebruary 31, 2026\r\nx\r\n"));
    EXPECT_EQ(controller.depositionDate(), QDate(2020, 2, 1));
    EXPECT_EQ(controller.transcriptMessage(),
              u"The transcript's date, “31 february 2026”, is no date of the calendar. Please check the date below."_s);
}

TEST_F(SubmitTranscript, PtxInAnyCaseIsTakenWithoutWarningAndWithoutPrefilling)
{
    for (const QString& name : {u"a.ptx"_s, u"b.PTX"_s, u"c.pTx"_s}) {
        const QDate before = controller.depositionDate();
        const QString path = writeFile(name, SubmitTexts::cover);
        controller.addTranscriptFile(path);
        EXPECT_EQ(job().transcriptFile(), path);
        EXPECT_EQ(controller.deponentLastName(), QString());
        EXPECT_EQ(controller.depositionDate(), before);
    }
    expectWarnings({});
}

TEST_F(SubmitTranscript, EveryParsedTypeIsTakenSilentlyAndParsedInAnyCase)
{
    for (const QString& type :
         {u"TXT"_s, u"ptf"_s, u"Xml"_s, u"ASC"_s, u"ctx"_s, u"V1"_s, u"trn"_s, u"WPD"_s, u"ami"_s, u"PRN"_s}) {
        job().setDeponentLastName({});
        controller.addTranscriptFile(transcript(u"Doe."_s + type));
        EXPECT_EQ(controller.deponentLastName(), u"Doe"_s) << type.toStdString();
    }
    expectWarnings({});
}

TEST_F(SubmitTranscript, AnotherTypeIsTakenAfterTheWarningAndNotParsed)
{
    const QString path = transcript(u"notes.doc"_s);
    controller.addTranscriptFile(path);
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(controller.deponentLastName(), QString());
    expectWarnings({u"Only TXT, PTF, XML, ASC, CTX, PTX, V1, TRN, WPD, AMI and PRN files are supported. If you send "
                    "your transcript in another format we will make our best effort to synchronize to it -- but there "
                    "may be additional delays in processing."_s});
}

TEST_F(SubmitTranscript, ANameWithoutExtensionIsRefusedInThePanelButTakenWhenTyped)
{
    const QString path = transcript(u"README"_s);
    chooses({path});
    controller.browseTransciptButton();
    EXPECT_EQ(job().transcriptFile(), QString());
    expectWarnings({u"Transcript files must have extension in order to be processed."_s});

    dialogs().warnings.clear();
    controller.controlTextDidChange(path);
    EXPECT_EQ(job().transcriptFile(), path);
    expectWarnings({TranscriptFileType::unknownTypeWarning});
}

TEST_F(SubmitTranscript, ThePanelTakesOneFileAndRefreshes)
{
    controller.addMediaFiles({recording(u"a.mov"_s)});
    chooses({transcript()});
    controller.browseTransciptButton();
    EXPECT_EQ(job().transcriptFile(), path(u"Doe.txt"_s));
    EXPECT_EQ(controller.transcriptText(), path(u"Doe.txt"_s));
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
    ASSERT_EQ(dialogs().chosen.size(), 1);
    EXPECT_EQ(dialogs().chosen.first().second, QString()) << "files of every type are offered";
}

TEST_F(SubmitTranscript, ACancelledPanelOnlyRefreshes)
{
    controller.addMediaFiles({recording(u"a.mov"_s)});
    job().setTranscriptFile(transcript());
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    dialogs().choices << std::nullopt;
    controller.browseTransciptButton();
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitTranscript, MoreOrLessThanOneChosenFileFailsAnAssertion)
{
    for (const QStringList& paths : {QStringList(), QStringList{transcript(), transcript(u"b.txt"_s)}}) {
        chooses(paths);
        EXPECT_DEBUG_DEATH(controller.browseTransciptButton(), "illegal number of transcript files selected");
    }
}

TEST_F(SubmitTranscript, APathIsIgnoredWhileItIsTypedAndToldOnceItHasBeen)
{
    const QString path = transcript();
    controller.controlTextDidChange(path.chopped(1));
    EXPECT_EQ(job().transcriptFile(), QString());
    EXPECT_EQ(controller.transcriptText(), path.chopped(1));
    EXPECT_EQ(controller.transcriptMessage(), QString());
    controller.newTrascriptFilePathEntered(path.chopped(1));
    EXPECT_EQ(controller.transcriptMessage(), u"There is no file at this path."_s);
    controller.controlTextDidChange(path);
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(controller.transcriptMessage(), QString());
    controller.newTrascriptFilePathEntered(path + u"x"_s);
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(controller.transcriptMessage(),
              u"There is no file at this path. The job's transcript is still Doe.txt."_s);
    controller.newTrascriptFilePathEntered({});
    EXPECT_EQ(controller.transcriptMessage(), u"The job's transcript is still Doe.txt."_s);
    expectWarnings({});
}

TEST_F(SubmitTranscript, AFolderIsNoTranscript)
{
    ASSERT_TRUE(QDir().mkpath(path(u"folder.txt"_s)));
    controller.newTrascriptFilePathEntered(path(u"folder.txt"_s));
    EXPECT_EQ(job().transcriptFile(), QString());
    EXPECT_EQ(controller.transcriptMessage(), u"This is a folder, not a transcript."_s);
    expectWarnings({});
}

TEST_F(SubmitTranscript, TypingAndEndingTheEditBothRefresh)
{
    controller.addMediaFiles({recording(u"a.mov"_s)});
    controller.controlTextDidChange(transcript());
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());

    controller.setJob(Job::job());
    controller.addMediaFiles({path(u"a.mov"_s)});
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    controller.newTrascriptFilePathEntered(transcript());
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitTranscript, ACorporateWitnessPrefillsNothingAndLeavesTheSubmitStateToTheNextAction)
{
    controller.addMediaFiles({recording(u"a.mov"_s)});
    const QString path = writeFile(u"corporate.txt"_s, SubmitTexts::corporateCover);
    const QDate before = controller.depositionDate();
    chooses({path});
    controller.browseTransciptButton();
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(controller.deponentLastName(), QString());
    EXPECT_EQ(controller.depositionDate(), before);
    EXPECT_EQ(controller.transcriptMessage(),
              u"No name or date is taken from a corporate witness's transcript. Please enter them."_s);
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    controller.setDeponentLastName(u"Smith"_s);
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitTranscript, ATranscriptThatCannotBeReadIsTakenAndPrefillsNothing)
{
    const QString path = writeFile(u"broken.txt"_s, QByteArray("\xff\xfe\x00\xd8\x41\x00", 6));
    controller.addTranscriptFile(path);
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(controller.deponentLastName(), QString());
}

TEST_F(SubmitTranscript, TheTextFollowsTheJobUnlessAPathIsBeingTyped)
{
    controller.controlTextDidChange(u"/nowhere"_s);
    job().setDeponentLastName(u"Doe"_s);
    EXPECT_EQ(controller.transcriptText(), u"/nowhere"_s);
    job().setTranscriptFile(u"/other.txt"_s);
    EXPECT_EQ(controller.transcriptText(), u"/other.txt"_s);
    controller.setJob(Job::job());
    EXPECT_EQ(controller.transcriptText(), QString());
    EXPECT_EQ(controller.windowTitle(), u"Submit Job - Quillpost"_s);
}

TEST_F(SubmitTranscript, OfFilesDroppedOnTheMainWindowTheLastTranscriptWinsAndTheOthersAreRecordings)
{
    controller.addDroppedFiles({transcript(u"a.txt"_s), recording(u"one.mov"_s), transcript(u"b.ptx"_s),
                                recording(u"two.wav"_s), path(u"gone.txt"_s)});
    EXPECT_EQ(job().transcriptFile(), path(u"b.ptx"_s));
    EXPECT_EQ(namesOfRecordings(), QStringList({u"two.wav"_s, u"one.mov"_s}));
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
    EXPECT_EQ(controller.transcriptMessage(),
              u"A job has one transcript. Of the 2 that were dropped, b.ptx was taken."_s);
    EXPECT_EQ(controller.mediaMessage(), u"gone.txt does not exist any more."_s);
    expectWarnings({});
}

} // namespace
