#include "WindowTest.h"

#include "support/ScriptedFfmpeg.h"
#include "ui/controls/BusyIndicator.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

using namespace Qt::StringLiterals;

namespace {

class SubmitWindowFiles : public SubmitWindowTest
{
protected:
    SubmitWindowFiles() { ffmpeg.putFirstOnPath(); }

    QLineEdit& field() { return find<QLineEdit>(u"trascriptTextField"_s); }
    QTableView& table() { return find<QTableView>(u"mediaFilesTable"_s); }
    // The text over a list without rows.
    QLabel* overlay()
    {
        for (QLabel* const label : table().findChildren<QLabel*>()) {
            if (label->text() == u"Drop recordings here or press Add…")
                return label;
        }
        return nullptr;
    }

    ScriptedFfmpeg ffmpeg;
};

TEST_F(SubmitWindowFiles, ATypedPathBecomesTheTranscript)
{
    const QString path = transcript();
    enter(field());
    QTest::keyClicks(&field(), path.chopped(1));
    EXPECT_EQ(job().transcriptFile(), QString());
    EXPECT_FALSE(find<QLabel>(u"transcriptMessageLabel"_s).isVisible()) << "it is not all typed yet";
    QTest::keyClicks(&field(), path.last(1));
    EXPECT_EQ(job().transcriptFile(), path);
    EXPECT_EQ(field().text(), path);
    EXPECT_FALSE(find<QLabel>(u"transcriptMessageLabel"_s).isVisible());
    EXPECT_EQ(find<QLineEdit>(u"deponentFirstNameField"_s).text(), u"Jane Q."_s);
    EXPECT_EQ(find<QLineEdit>(u"deponentLastNameField"_s).text(), u"Doe"_s);
    EXPECT_EQ(window.windowTitle(), u"Doe.txt - Submit Job - Quillpost"_s);
}

TEST_F(SubmitWindowFiles, LeavingAnEditedFieldEntersItsPath)
{
    enter(field());
    QTest::keyClicks(&field(), u"/nowhere.txt"_s);
    QTest::keyClick(&field(), Qt::Key_Tab);
    EXPECT_EQ(find<QLabel>(u"transcriptMessageLabel"_s).text(), u"There is no file at this path."_s);
    EXPECT_EQ(field().text(), u"/nowhere.txt"_s) << "what was typed stays";
}

TEST_F(SubmitWindowFiles, OfThreeFilesDroppedOnTheTranscriptFieldTheThirdIsTaken)
{
    field().clearFocus();
    const auto data = files({transcript(u"a.txt"_s), transcript(u"b.txt"_s), transcript(u"c.txt"_s)});
    EXPECT_EQ(drop(field(), *data), Qt::CopyAction);
    EXPECT_EQ(job().transcriptFile(), path(u"c.txt"_s));
    EXPECT_EQ(field().text(), path(u"c.txt"_s));
    EXPECT_EQ(controller.deponentLastName(), u"Doe"_s);
}

TEST_F(SubmitWindowFiles, AFileDroppedWhileThePathIsEditedReplacesTheEdit)
{
    enter(field());
    QTest::keyClicks(&field(), u"/half"_s);
    const auto data = files({transcript(u"a.txt"_s), transcript(u"b.txt"_s)});
    EXPECT_EQ(drop(field(), *data), Qt::CopyAction);
    EXPECT_EQ(field().text(), path(u"b.txt"_s));
    EXPECT_EQ(job().transcriptFile(), path(u"b.txt"_s));
    field().undo();
    EXPECT_EQ(field().text(), u"/half"_s);
}

TEST_F(SubmitWindowFiles, ADragWithoutFileNamesIsRefused)
{
    QMimeData text;
    text.setText(u"/some/where.txt"_s);
    QMimeData page;
    page.setUrls({QUrl(u"https://example.org/a.txt"_s)});
    for (const QMimeData* const data : {&text, &page}) {
        EXPECT_EQ(drop(*table().viewport(), *data), Qt::IgnoreAction);
        EXPECT_EQ(drop(field(), *data), Qt::IgnoreAction);
    }
    EXPECT_EQ(namesOfRecordings(), QStringList());
    EXPECT_EQ(field().text(), QString());
}

TEST_F(SubmitWindowFiles, FilesDroppedOnTheListAreAddedAsCopies)
{
    const auto data = files({transcript(u"a.txt"_s), recording(u"b.mov"_s)});
    EXPECT_EQ(drop(*table().viewport(), *data, Qt::CopyAction | Qt::MoveAction, Qt::ShiftModifier), Qt::CopyAction);
    EXPECT_EQ(namesOfRecordings(), QStringList{u"b.mov"_s});
    EXPECT_EQ(table().model()->rowCount(), 1);
    EXPECT_EQ(find<QLabel>(u"mediaMessageLabel"_s).text(), u"a.txt is a transcript, not a recording."_s);
    EXPECT_TRUE(find<QLabel>(u"mediaMessageLabel"_s).isVisible());
    EXPECT_EQ(drop(*table().viewport(), *files({recording(u"c.mov"_s)}), Qt::MoveAction), Qt::IgnoreAction)
        << "a program that only moves files";
    EXPECT_EQ(namesOfRecordings(), QStringList{u"b.mov"_s});
    EXPECT_EQ(drop(*table().viewport(), *files({path(u"c.mov"_s)})), Qt::CopyAction) << "also on a row";
    EXPECT_EQ(namesOfRecordings(), QStringList({u"c.mov"_s, u"b.mov"_s}));
    EXPECT_FALSE(find<QLabel>(u"mediaMessageLabel"_s).isVisible());
}

TEST_F(SubmitWindowFiles, AnEmptyListSaysWhatToDo)
{
    ASSERT_NE(overlay(), nullptr);
    EXPECT_TRUE(overlay()->isVisible());
    controller.addMediaFiles({recording(u"a.mov"_s)});
    EXPECT_FALSE(overlay()->isVisible());
    controller.deleteSelectedMediaFiles(job().mediaFiles());
    EXPECT_TRUE(overlay()->isVisible());
}

TEST_F(SubmitWindowFiles, TheDeleteKeyAndTheButtonRemoveTheSelectedRows)
{
    auto& remove = find<QPushButton>(u"deleteSelectedMediaFilesButton"_s);
    controller.addMediaFiles(
        {recording(u"a.mov"_s), recording(u"b.mov"_s), recording(u"c.mov"_s), recording(u"d.mov"_s)});
    EXPECT_FALSE(remove.isEnabled());
    table().selectRow(1);
    table().selectionModel()->select(table().model()->index(2, 0),
                                     QItemSelectionModel::Select | QItemSelectionModel::Rows);
    EXPECT_TRUE(remove.isEnabled());
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(namesOfRecordings(), QStringList({u"d.mov"_s, u"a.mov"_s}));
    table().selectRow(0);
    QTest::mouseClick(&remove, Qt::LeftButton);
    EXPECT_EQ(namesOfRecordings(), QStringList({u"d.mov"_s}));
    table().clearSelection();
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_EQ(namesOfRecordings(), QStringList({u"d.mov"_s}));
    EXPECT_FALSE(remove.isEnabled());
}

TEST_F(SubmitWindowFiles, AddAndBrowseOpenTheirPanels)
{
    dialogs().choices << std::optional<QStringList>(QStringList{transcript()})
                      << std::optional<QStringList>(QStringList{recording(u"a.mov"_s)});
    QTest::mouseClick(&find(u"browseTransciptButton"_s), Qt::LeftButton);
    QTest::mouseClick(&find(u"addMediaFilesButton"_s), Qt::LeftButton);
    EXPECT_EQ(field().text(), path(u"Doe.txt"_s));
    EXPECT_EQ(namesOfRecordings(), QStringList{u"a.mov"_s});
}

TEST_F(SubmitWindowFiles, ARingTurnsWhileRecordingsAreRead)
{
    auto& busy = find<BusyIndicator>(u"mediaBusyIndicator"_s);
    EXPECT_FALSE(busy.isRunning());
    ffmpeg.waitsForRelease(u"go"_s);
    controller.addMediaFiles({recording(u"a.mov"_s)});
    EXPECT_TRUE(busy.isRunning());
    ASSERT_TRUE(Waiting::until([&] { return ffmpeg.hasReached(u"go"_s); }));
    ffmpeg.release(u"go"_s);
    waitUntilRead();
    EXPECT_FALSE(busy.isRunning());
}

} // namespace
