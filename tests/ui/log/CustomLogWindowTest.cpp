#include "ui/log/CustomLogWindow.h"

#include "ui-support/RecordingApplication.h"

#include "foundation/FileLogger.h"
#include "foundation/Text.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"
#include "ui/log/CustomLogWindowController.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class CustomLogWindowTest : public TemporaryHome
{
protected:
    CustomLogWindowTest() { application.logger = std::make_shared<FileLogger>(path(u"logs"_s)); }

    void write(std::string_view line)
    {
        application.logger->append(line);
        application.logger->flush();
    }
    void writeManyLines()
    {
        for (int i = 0; i < 500; ++i)
            application.logger->append(fmt::format("line {} of the log\n", i));
        application.logger->flush();
    }
    void open()
    {
        controller = std::make_unique<CustomLogWindowController>(application, 5ms);
        window = std::make_unique<CustomLogWindow>(*controller);
        controller->showWindow();
        QApplication::setActiveWindow(window.get());
        view = window->findChild<QPlainTextEdit*>(u"logTextView"_s);
        bar = view->verticalScrollBar();
    }
    template <typename Widget>
    [[nodiscard]] Widget& the(const char* name) const
    {
        auto* widget = window->findChild<Widget*>(QString::fromLatin1(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return *widget;
    }
    [[nodiscard]] bool shows(const QString& part) const
    {
        return Waiting::until([&] { return view->toPlainText().contains(part); });
    }
    [[nodiscard]] bool isAtBottom() const { return bar->value() == bar->maximum(); }
    [[nodiscard]] QString matchText() const { return the<QLabel>("matchLabel").text(); }

    RecordingApplication application;
    std::unique_ptr<CustomLogWindowController> controller;
    std::unique_ptr<CustomLogWindow> window;
    QPlainTextEdit* view = nullptr;
    QScrollBar* bar = nullptr;
};

} // namespace

TEST_F(CustomLogWindowTest, ItOpensAtTheBottomOfTheLog)
{
    writeManyLines();
    open();
    EXPECT_TRUE(view->toPlainText().contains(u"line 0 of"_s));
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_TRUE(isAtBottom());
    EXPECT_FALSE(the<QPushButton>("followButton").isVisible());
    EXPECT_FALSE(the<QLabel>("stateLabel").isVisible());
}

TEST_F(CustomLogWindowTest, ALineWrittenWhileItIsOpenShowsAtTheBottomAndIsScrolledTo)
{
    writeManyLines();
    open();
    write("the newest line\n");
    ASSERT_TRUE(shows(u"the newest line"_s));
    EXPECT_TRUE(view->viewport()->rect().intersects(view->cursorRect()));
    EXPECT_TRUE(isAtBottom());
    EXPECT_TRUE(view->textCursor().atEnd());
    EXPECT_FALSE(view->textCursor().hasSelection());
}

TEST_F(CustomLogWindowTest, ALineWrittenWhileItIsHiddenIsThereWhenItIsShown)
{
    writeManyLines();
    open();
    window->close();
    write("written meanwhile\n");
    ASSERT_TRUE(shows(u"written meanwhile"_s));
    controller->showWindow();
    EXPECT_TRUE(isAtBottom());
}

TEST_F(CustomLogWindowTest, TypingPastingAndDroppingAreNotAccepted)
{
    write("first\n");
    open();
    QTest::keyClicks(view, u"typed"_s);
    QTest::keyClick(view, Qt::Key_Backspace);
    QTest::keyClick(view, Qt::Key_Return);
    view->paste();
    view->cut();
    EXPECT_EQ(view->toPlainText(), u"first\n"_s);
    write("later\n");
    ASSERT_TRUE(shows(u"later"_s));
    QTest::keyClicks(view, u"typed"_s);
    EXPECT_EQ(view->toPlainText(), u"first\nlater\n"_s);
    EXPECT_TRUE(view->isReadOnly());
}

TEST_F(CustomLogWindowTest, AUserWhoScrolledUpKeepsTheirPlaceAndIsOfferedToFollow)
{
    writeManyLines();
    open();
    bar->setValue(10);
    auto& followButton = the<QPushButton>("followButton");
    EXPECT_TRUE(followButton.isVisible());
    write("the newest line\n");
    ASSERT_TRUE(shows(u"the newest line"_s));
    EXPECT_EQ(bar->value(), 10);
    QTest::mouseClick(&followButton, Qt::LeftButton);
    EXPECT_TRUE(isAtBottom());
    EXPECT_FALSE(followButton.isVisible());
    write("and one more\n");
    ASSERT_TRUE(shows(u"and one more"_s));
    EXPECT_TRUE(isAtBottom());
}

TEST_F(CustomLogWindowTest, TheLinesThatAreReadStayInSightWhileTheOldestGo)
{
    application.logger = std::make_shared<FileLogger>(path(u"large"_s), /*maximumFileSize=*/10'000'000);
    for (int i = 0; i < CustomLogWindowController::maximumLines; ++i)
        application.logger->append(fmt::format("{}\n", i));
    application.logger->flush();
    open();
    ASSERT_TRUE(shows(u"49998"_s));
    bar->setValue(5000);
    const QString read = view->cursorForPosition(QPoint()).block().text();
    for (int i = 0; i < 100; ++i)
        application.logger->append("new\n");
    write("the newest line\n");
    ASSERT_TRUE(shows(u"the newest line"_s));
    EXPECT_EQ(view->cursorForPosition(QPoint()).block().text(), read);
    EXPECT_FALSE(controller->isFollowing());
}

TEST_F(CustomLogWindowTest, ScrollingBackToTheBottomFollowsAgain)
{
    writeManyLines();
    open();
    bar->setValue(10);
    EXPECT_FALSE(controller->isFollowing());
    bar->setValue(bar->maximum());
    EXPECT_TRUE(controller->isFollowing());
}

TEST_F(CustomLogWindowTest, AShortLogIsFollowedAndNothingOfItIsSelected)
{
    write("first\n");
    open();
    for (int i = 0; i < 5; ++i) {
        write(fmt::format("line {}\n", i));
        ASSERT_TRUE(shows(u"line %1"_s.arg(i)));
        EXPECT_TRUE(controller->isFollowing());
        EXPECT_FALSE(view->textCursor().hasSelection());
        EXPECT_FALSE(the<QPushButton>("followButton").isVisible());
    }
}

TEST_F(CustomLogWindowTest, ASelectionOutlivesNewLines)
{
    write("first\n");
    open();
    view->selectAll();
    write("later\n");
    ASSERT_TRUE(shows(u"later"_s));
    EXPECT_EQ(view->textCursor().selectedText(), u"first\u2029"_s);
}

TEST_F(CustomLogWindowTest, AnotherSizeOfTheWindowKeepsTheBottomInSight)
{
    writeManyLines();
    open();
    window->resize(window->width(), window->height() / 2);
    QCoreApplication::processEvents();
    EXPECT_TRUE(isAtBottom());
    EXPECT_TRUE(controller->isFollowing());
}

TEST_F(CustomLogWindowTest, MarkupInTheLogIsShownAsItStands)
{
    write("<h1>502</h1> &amp; <script>x</script>\n");
    open();
    EXPECT_EQ(view->toPlainText(), u"<h1>502</h1> &amp; <script>x</script>\n"_s);
}

TEST_F(CustomLogWindowTest, WithoutALogItSaysSo)
{
    application.logger.reset();
    open();
    EXPECT_TRUE(the<QLabel>("stateLabel").isVisible());
    EXPECT_EQ(the<QLabel>("stateLabel").text(), u"No log is kept in this run."_s);
}

TEST_F(CustomLogWindowTest, TypingInTheSearchFieldSelectsTheFirstMatchAndMarksAll)
{
    write("Depo one\nother\ndepo two\n");
    open();
    view->moveCursor(QTextCursor::Start);
    auto& field = the<QLineEdit>("searchField");
    QTest::keyClicks(&field, u"depo"_s);
    EXPECT_EQ(view->textCursor().selectedText(), u"Depo"_s);
    EXPECT_EQ(view->extraSelections().size(), 2);
    EXPECT_EQ(matchText(), u"1 of 2"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(view->textCursor().selectedText(), u"depo"_s);
    EXPECT_EQ(matchText(), u"2 of 2"_s);
}

TEST_F(CustomLogWindowTest, KeysAndButtonsGoToTheNextAndPreviousMatch)
{
    write("depo one\nother\ndepo two\n");
    open();
    QTest::keyClicks(&the<QLineEdit>("searchField"), u"depo"_s);
    const auto line = [this] { return view->textCursor().blockNumber(); };
    const int first = line();
    QTest::keyClick(window.get(), Qt::Key_F3);
    EXPECT_NE(line(), first);
    QTest::keyClick(window.get(), Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(line(), first);
    QTest::mouseClick(&the<QPushButton>("nextButton"), Qt::LeftButton);
    EXPECT_NE(line(), first);
    QTest::mouseClick(&the<QPushButton>("previousButton"), Qt::LeftButton);
    EXPECT_EQ(line(), first);
}

TEST_F(CustomLogWindowTest, ATextThatIsNotThereIsToldOf)
{
    write("depo one\n");
    open();
    QTest::keyClicks(&the<QLineEdit>("searchField"), u"nothing"_s);
    EXPECT_EQ(matchText(), u"Not found"_s);
    EXPECT_FALSE(the<QPushButton>("nextButton").isEnabled());
    EXPECT_TRUE(view->extraSelections().isEmpty());
}

TEST_F(CustomLogWindowTest, EscapeLeavesTheSearchFirstAndThenClosesTheWindow)
{
    write("depo one\n");
    open();
    auto& field = the<QLineEdit>("searchField");
    QTest::keyClicks(&field, u"depo"_s);
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_EQ(field.text(), QString());
    EXPECT_TRUE(view->extraSelections().isEmpty());
    EXPECT_TRUE(window->isVisible());
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CustomLogWindowTest, ClearingTheFieldEndsTheMarks)
{
    write("depo one\n");
    open();
    auto& field = the<QLineEdit>("searchField");
    QTest::keyClicks(&field, u"depo"_s);
    ASSERT_FALSE(view->extraSelections().isEmpty());
    field.clear();
    EXPECT_TRUE(view->extraSelections().isEmpty());
    EXPECT_EQ(matchText(), QString());
}

TEST_F(CustomLogWindowTest, MatchesThatScrollIntoSightAreMarked)
{
    writeManyLines();
    open();
    QTest::keyClicks(&the<QLineEdit>("searchField"), u"line"_s);
    bar->setValue(0);
    ASSERT_TRUE(Waiting::until([this] {
        const auto marks = view->extraSelections();
        return !marks.isEmpty() && marks.constFirst().cursor.blockNumber() == 0;
    }));
    EXPECT_LT(view->extraSelections().size(), 200) << "only what can be seen";
}

TEST_F(CustomLogWindowTest, TheCloseButtonClosesIt)
{
    open();
    QTest::mouseClick(&the<QPushButton>("closeButton"), Qt::LeftButton);
    EXPECT_FALSE(window->isVisible());
}
