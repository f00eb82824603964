#include "ui/controls/TranscriptTextField.h"

#include "support/Waiting.h"
#include "ui/controls/DroppedFiles.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <QVBoxLayout>
#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<QMimeData> files(const QStringList& paths)
{
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls << QUrl::fromLocalFile(path);
    data->setUrls(urls);
    return data;
}

std::unique_ptr<QMimeData> words(const QString& text)
{
    auto data = std::make_unique<QMimeData>();
    data->setText(text);
    return data;
}

const QStringList threeFiles = {u"/cases/one.txt"_s, u"/cases/two.txt"_s, u"/cases/three.txt"_s};

class TranscriptTextFieldTest : public testing::Test
{
protected:
    TranscriptTextFieldTest()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&field);
        layout->addWidget(&other);
        field.setFieldEditor(&editor);
        window.show();
        QApplication::setActiveWindow(&window);
        other.setFocus();
    }
    ~TranscriptTextFieldTest() override
    {
        field.setParent(nullptr);
        other.setParent(nullptr);
    }

    [[nodiscard]] bool beginEditing()
    {
        field.setFocus();
        return Waiting::until([this] { return field.hasFocus(); });
    }
    // The action that entering and moving are answered with.
    [[nodiscard]] std::pair<Qt::DropAction, Qt::DropAction> dragOver(const QMimeData& data)
    {
        const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
        QDragEnterEvent enter(QPoint(3, 3), offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&field, &enter);
        QDragMoveEvent move(QPoint(4, 3), offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&field, &move);
        return {enter.isAccepted() ? enter.dropAction() : Qt::IgnoreAction,
                move.isAccepted() ? move.dropAction() : Qt::IgnoreAction};
    }
    // Whether the drop was taken.
    bool drop(const QMimeData& data)
    {
        // Drops go to where a drag of files was let in before.
        [[maybe_unused]] const auto answer = dragOver(*files(threeFiles));
        QDropEvent event(QPointF(3, 3), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&field, &event);
        QCoreApplication::processEvents(); // the drop is taken once the event is over
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }

    QWidget window;
    TranscriptTextField field;
    QLineEdit other;
    TranscriptTextView editor;
    QSignalSpy entered{&field, &TranscriptTextField::pathEntered};
    QSignalSpy edited{&field, &QLineEdit::textEdited};
};

} // namespace

TEST_F(TranscriptTextFieldTest, ADragOfFilesIsAnsweredWithACopy)
{
    const auto answer = dragOver(*files(threeFiles));
    EXPECT_EQ(answer.first, Qt::CopyAction);
    EXPECT_EQ(answer.second, Qt::CopyAction);
    ASSERT_TRUE(beginEditing());
    EXPECT_EQ(dragOver(*files(threeFiles)).second, Qt::CopyAction);
}

TEST_F(TranscriptTextFieldTest, ADragWithoutFileNamesIsRefusedAndChangesNothing)
{
    field.setText(u"before"_s);
    QMimeData page;
    page.setUrls({QUrl(u"https://example.org/one.txt"_s)});
    const auto text = words(u"/cases/one.txt"_s);
    for (const bool isBeingEdited : {false, true}) {
        if (isBeingEdited) {
            ASSERT_TRUE(beginEditing());
        }
        for (const QMimeData* data : std::initializer_list<const QMimeData*>{text.get(), &page}) {
            EXPECT_EQ(dragOver(*data).first, Qt::IgnoreAction);
            EXPECT_EQ(dragOver(*data).second, Qt::IgnoreAction);
            EXPECT_FALSE(drop(*data));
        }
        EXPECT_FALSE(TranscriptTextView::performDrop(field, DroppedFiles::localPaths(text.get())));
        EXPECT_FALSE(TranscriptTextView::performDrop(field, DroppedFiles::localPaths(nullptr)));
    }
    EXPECT_EQ(field.text(), u"before"_s);
    EXPECT_EQ(entered.count(), 0);
    EXPECT_EQ(edited.count(), 0);
}

TEST_F(TranscriptTextFieldTest, DroppingThreeFilesTakesTheThirdAndEntersIt)
{
    field.setText(u"before"_s);
    EXPECT_TRUE(drop(*files(threeFiles)));
    EXPECT_EQ(field.text(), u"/cases/three.txt"_s);
    EXPECT_EQ(entered.count(), 1);
    EXPECT_EQ(edited.count(), 0);
}

TEST_F(TranscriptTextFieldTest, AnEditGoesOnWhileAnotherWindowIsInFront)
{
    ASSERT_TRUE(beginEditing());
    QTest::keyClicks(&field, u"/half"_s);
    QWidget fileManager;
    fileManager.show();
    QApplication::setActiveWindow(&fileManager);
    ASSERT_FALSE(field.hasFocus());
    EXPECT_TRUE(drop(*files(threeFiles)));
    EXPECT_EQ(field.text(), u"/cases/three.txt"_s);
    EXPECT_EQ(entered.count(), 0);
    field.undo();
    EXPECT_EQ(field.text(), u"/half"_s);
}

TEST_F(TranscriptTextFieldTest, APathIsAlreadyInTheFieldWhenItIsEntered)
{
    QString seen;
    QObject::connect(&field, &TranscriptTextField::pathEntered, &field, [&] { seen = field.text(); });
    drop(*files(threeFiles));
    EXPECT_EQ(seen, u"/cases/three.txt"_s);
}

TEST_F(TranscriptTextFieldTest, DroppingThreeFilesWhileEditingReplacesTheTextByTheThirdAsAnEdit)
{
    ASSERT_TRUE(beginEditing());
    QTest::keyClicks(&field, u"before"_s);
    edited.clear();
    EXPECT_TRUE(drop(*files(threeFiles)));
    EXPECT_EQ(field.text(), u"/cases/three.txt"_s);
    EXPECT_EQ(edited.count(), 1);
    EXPECT_EQ(edited.value(0).value(0).toString(), u"/cases/three.txt"_s);
    EXPECT_EQ(entered.count(), 0) << "the edit has not ended";
}

TEST_F(TranscriptTextFieldTest, ADropWhileEditingIsUndoneInOneStep)
{
    field.setText(u"before"_s);
    ASSERT_TRUE(beginEditing());
    drop(*files(threeFiles));
    ASSERT_EQ(field.text(), u"/cases/three.txt"_s);
    field.undo();
    EXPECT_EQ(field.text(), u"before"_s);
}

TEST_F(TranscriptTextFieldTest, ADropWhileEditingIsEnteredWhenTheEditEnds)
{
    ASSERT_TRUE(beginEditing());
    drop(*files(threeFiles));
    other.setFocus();
    EXPECT_EQ(entered.count(), 1);
}

TEST_F(TranscriptTextFieldTest, WithoutAFieldEditorEveryDropIsTheFields)
{
    field.setFieldEditor(nullptr);
    ASSERT_TRUE(beginEditing());
    EXPECT_TRUE(drop(*files(threeFiles)));
    EXPECT_EQ(entered.count(), 1);
}

TEST_F(TranscriptTextFieldTest, AFieldEditorThatIsGoneTakesNoDrops)
{
    auto passing = std::make_unique<TranscriptTextView>();
    field.setFieldEditor(passing.get());
    passing.reset();
    ASSERT_TRUE(beginEditing());
    EXPECT_TRUE(drop(*files(threeFiles)));
    EXPECT_EQ(entered.count(), 1);
}

TEST_F(TranscriptTextFieldTest, ReturnEntersAnEditOnce)
{
    ASSERT_TRUE(beginEditing());
    QTest::keyClicks(&field, u"/x"_s);
    EXPECT_EQ(edited.count(), 2);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(entered.count(), 1);
    QTest::keyClick(&field, Qt::Key_Return);
    other.setFocus();
    EXPECT_EQ(entered.count(), 1);
}

TEST_F(TranscriptTextFieldTest, LeavingTheFieldEntersAnEdit)
{
    ASSERT_TRUE(beginEditing());
    QTest::keyClicks(&field, u"/x"_s);
    EXPECT_EQ(entered.count(), 0);
    other.setFocus();
    EXPECT_EQ(entered.count(), 1);
}

TEST_F(TranscriptTextFieldTest, LeavingAFieldThatWasNotChangedEntersNothing)
{
    field.setText(u"/x"_s);
    ASSERT_TRUE(beginEditing());
    other.setFocus();
    EXPECT_EQ(entered.count(), 0);
}

TEST_F(TranscriptTextFieldTest, AnotherWindowInFrontEndsNoEdit)
{
    ASSERT_TRUE(beginEditing());
    QTest::keyClicks(&field, u"/x"_s);
    QFocusEvent deactivated(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(&field, &deactivated);
    EXPECT_EQ(entered.count(), 0);
    other.setFocus();
    EXPECT_EQ(entered.count(), 1);
}

TEST_F(TranscriptTextFieldTest, AFieldThatCannotBeEditedTakesNoDrops)
{
    field.setReadOnly(true);
    EXPECT_EQ(dragOver(*files(threeFiles)).first, Qt::IgnoreAction);
    EXPECT_FALSE(drop(*files(threeFiles)));
    EXPECT_EQ(field.text(), QString());
}
