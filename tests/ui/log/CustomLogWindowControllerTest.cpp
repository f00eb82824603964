#include "ui/log/CustomLogWindowController.h"

#include "ui-support/RecordingApplication.h"

#include "foundation/FileLogger.h"
#include "foundation/Log.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto shortInterval = 5ms;

class CustomLogWindowControllerTest : public TemporaryHome
{
protected:
    CustomLogWindowControllerTest() { application.logger = std::make_shared<FileLogger>(path(u"logs"_s)); }

    void write(std::string_view line)
    {
        application.logger->append(line);
        application.logger->flush();
    }
    // Bytes that are no whole line, as a reader may come upon them.
    void writeRaw(const QByteArray& bytes)
    {
        QFile file(application.logger->sortedLogFilePaths().constFirst());
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(bytes);
    }
    CustomLogWindowController& open(std::chrono::milliseconds interval = shortInterval)
    {
        controller = std::make_unique<CustomLogWindowController>(application, interval);
        return *controller;
    }
    [[nodiscard]] QString text() const { return controller->logText().toPlainText(); }
    [[nodiscard]] bool shows(const QString& part) const
    {
        return Waiting::until([&] { return text().contains(part); });
    }

    RecordingApplication application;
    std::unique_ptr<CustomLogWindowController> controller;
};

} // namespace

TEST_F(CustomLogWindowControllerTest, TheWholeLogIsThereAtOnce)
{
    write("first\n");
    write("second\n");
    open();
    EXPECT_EQ(text(), u"first\nsecond\n"_s);
    EXPECT_EQ(controller->logPath(), application.logger->sortedLogFilePaths().constFirst());
    EXPECT_EQ(controller->stateText(), QString());
}

TEST_F(CustomLogWindowControllerTest, ALogOfManyPiecesIsThereAtOnce)
{
    QString whole;
    for (int i = 0; i < 2500; ++i) {
        const QByteArray line = QByteArray::number(i).rightJustified(99, '.') + '\n';
        application.logger->append(std::string_view(line.constData(), line.size()));
        whole += QString::fromLatin1(line);
    }
    application.logger->flush();
    open();
    EXPECT_EQ(text(), whole);
}

TEST_F(CustomLogWindowControllerTest, ALineWrittenLaterIsAppendedAndScrolledTo)
{
    write("first\n");
    open();
    QSignalSpy appended(controller.get(), &CustomLogWindowController::textAppended);
    QSignalSpy scrolled(controller.get(), &CustomLogWindowController::scrollToBottomRequested);
    write("later\n");
    ASSERT_TRUE(shows(u"later"_s));
    EXPECT_EQ(text(), u"first\nlater\n"_s);
    ASSERT_EQ(appended.count(), 1);
    EXPECT_EQ(appended.value(0).value(0).toString(), u"later\n"_s);
    EXPECT_EQ(scrolled.count(), 1);
}

TEST_F(CustomLogWindowControllerTest, LinesOfTheProgramsLogAppearWithinAboutASecond)
{
    Log::configure({.fileLogger = application.logger});
    controller = std::make_unique<CustomLogWindowController>(application);
    Log::info("about to upload {}", 7);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(shows(u"about to upload 7"_s));
    EXPECT_LT(timer.elapsed(), 10'000);
    Log::shutDown();
}

TEST_F(CustomLogWindowControllerTest, AfterAnEmptyReadTheFileIsLookedAtAgainOnlyAfterTheInterval)
{
    write("first\n");
    open(1h);
    Waiting::turnMainLoopFor(20ms);
    write("later\n");
    Waiting::turnMainLoopFor(50ms);
    EXPECT_FALSE(text().contains(u"later"_s));
    controller->refreshLog();
    EXPECT_TRUE(text().contains(u"later"_s));
}

TEST_F(CustomLogWindowControllerTest, WhatIsReadIsFollowedByTheNextReadAtOnce)
{
    open(1h);
    writeRaw(QByteArray(2 * LogFileTail::pieceSize + 10, 'x') + "end");
    controller->refreshLog();
    EXPECT_FALSE(text().contains(u"end"_s)) << "one piece at a time";
    EXPECT_TRUE(shows(u"end"_s));
}

TEST_F(CustomLogWindowControllerTest, ACharacterCutByTheEndOfAReadIsPutTogether)
{
    open(1h);
    const QByteArray euro = "\xe2\x82\xac";
    for (const char byte : "a" + euro + "b") {
        writeRaw(QByteArray(1, byte));
        controller->refreshLog();
    }
    EXPECT_EQ(text(), QString(u"a€b"_s));
}

TEST_F(CustomLogWindowControllerTest, ACharacterAcrossTwoPiecesIsPutTogether)
{
    writeRaw(QByteArray(LogFileTail::pieceSize - 1, 'x') + "\xe2\x82\xac|");
    open();
    EXPECT_TRUE(text().endsWith(u"x€|"_s));
    EXPECT_FALSE(text().contains(QChar::ReplacementCharacter));
}

TEST_F(CustomLogWindowControllerTest, BytesThatAreNoTextDoNotStopTheLog)
{
    writeRaw(QByteArray("a\xff\xfe\0z\n", 6));
    open();
    write("later\n");
    EXPECT_TRUE(shows(u"later"_s));
    EXPECT_TRUE(text().startsWith(u'a'));
}

TEST_F(CustomLogWindowControllerTest, AFullLogThatStartsOverIsFollowedAndTheOldTextStays)
{
    open();
    int number = 0;
    const auto line = [&number] { return fmt::format("line {:06} {}\n", number++, std::string(80, '.')); };
    qint64 written = 0;
    while (written + 93 <= FileLogger::defaultMaximumFileSize) {
        const std::string next = line();
        application.logger->append(next);
        written += static_cast<qint64>(next.size());
    }
    application.logger->flush();
    const QString last = u"line %1 "_s.arg(number - 1, 6, 10, QChar(u'0'));
    ASSERT_TRUE(shows(last));
    write(line());
    ASSERT_LT(QFile(controller->logPath()).size(), 1000) << "the log has started over";
    EXPECT_TRUE(shows(u"line %1 "_s.arg(number - 1, 6, 10, QChar(u'0'))));
    EXPECT_TRUE(text().contains(last + QString(80, u'.') + u"\n--- The log file was full; it starts over here ---\n"_s +
                                u"line "_s))
        << text().right(400).toStdString();
    EXPECT_TRUE(text().contains(u"line 000000"_s));
    EXPECT_EQ(text().count(u"starts over"_s), 1);
}

TEST_F(CustomLogWindowControllerTest, HalfACharacterAtTheOldEndSpoilsNothingOfTheNewBeginning)
{
    open(1h);
    writeRaw("old\xe2\x82");
    controller->refreshLog();
    QFile file(controller->logPath());
    ASSERT_TRUE(file.resize(0));
    writeRaw("new");
    controller->refreshLog();
    EXPECT_EQ(text(), u"old\n--- The log file was full; it starts over here ---\nnew"_s);
}

TEST_F(CustomLogWindowControllerTest, ItFollowsTheFileThatItOpenedAndNoOther)
{
    write("first\n");
    open();
    const QString file = controller->logPath();
    ASSERT_TRUE(QFile::rename(file, file + u".old"_s));
    ASSERT_FALSE(writeFile(u"logs/"_s + QFileInfo(file).fileName(), "of another run\n").isEmpty());
    write("later\n");
    EXPECT_TRUE(shows(u"later"_s));
    EXPECT_FALSE(text().contains(u"another run"_s));
}

TEST_F(CustomLogWindowControllerTest, WithoutALoggerItSaysSo)
{
    application.logger.reset();
    open();
    EXPECT_EQ(controller->stateText(), u"No log is kept in this run."_s);
    EXPECT_EQ(text(), QString());
    controller->refreshLog();
    EXPECT_EQ(controller->stateText(), u"No log is kept in this run."_s);
}

TEST_F(CustomLogWindowControllerTest, WithoutALogFileItSaysSo)
{
    application.logger = std::make_shared<FileLogger>(writeFile(u"a file"_s, "no folder"));
    open();
    EXPECT_EQ(controller->stateText(), u"No log is kept in this run."_s);
}

TEST_F(CustomLogWindowControllerTest, ALogFileThatWasRemovedIsToldOfAndWhatWasReadStays)
{
    write("first\n");
    open();
    ASSERT_TRUE(QFile::remove(controller->logPath()));
    EXPECT_TRUE(Waiting::until([this] { return controller->stateText().contains(u"was removed"_s); }));
    EXPECT_EQ(text(), u"first\n"_s);
}

TEST_F(CustomLogWindowControllerTest, MemoryIsBoundedInLinesAndCharacters)
{
    open(1h);
    controller->getData(QByteArray(CustomLogWindowController::maximumLines + 100, '\n') + "end");
    EXPECT_EQ(controller->logText().blockCount(), CustomLogWindowController::maximumLines);
    EXPECT_TRUE(text().endsWith(u"end"_s));
    for (int i = 0; i < 25; ++i)
        controller->getData(QByteArray(99'999, static_cast<char>('a' + i)) + '\n');
    EXPECT_LE(controller->logText().characterCount(), CustomLogWindowController::maximumCharacters);
    EXPECT_TRUE(text().endsWith(u"yyy\n"_s));
    EXPECT_TRUE(text().startsWith(QString(99'999, text().front()) + u'\n')) << "whole lines go";
}

TEST_F(CustomLogWindowControllerTest, ALogHoldsAWholeLogFileOfOrdinaryLines)
{
    // Forty bytes are fewer than the time, level and thread name of a line take.
    EXPECT_GE(CustomLogWindowController::maximumLines, FileLogger::defaultMaximumFileSize / 40);
    EXPECT_GE(CustomLogWindowController::maximumCharacters, FileLogger::defaultMaximumFileSize);
}

TEST_F(CustomLogWindowControllerTest, AUserWhoReadsFurtherUpIsNotScrolledAway)
{
    open(1h);
    QSignalSpy scrolled(controller.get(), &CustomLogWindowController::scrollToBottomRequested);
    QSignalSpy following(controller.get(), &CustomLogWindowController::followingChanged);
    controller->viewMoved(false, false);
    EXPECT_FALSE(controller->isFollowing());
    EXPECT_EQ(following.count(), 1);
    controller->getData("new\n");
    EXPECT_EQ(scrolled.count(), 0);
    controller->viewMoved(true, false);
    controller->getData("newer\n");
    EXPECT_EQ(scrolled.count(), 1);
}

TEST_F(CustomLogWindowControllerTest, AUserWhoHasTextSelectedKeepsTheSelection)
{
    open(1h);
    QSignalSpy scrolled(controller.get(), &CustomLogWindowController::scrollToBottomRequested);
    controller->viewMoved(true, true);
    controller->getData("new\n");
    EXPECT_EQ(scrolled.count(), 0);
    controller->follow();
    EXPECT_TRUE(controller->isFollowing());
    EXPECT_EQ(scrolled.count(), 1);
}

TEST_F(CustomLogWindowControllerTest, ASearchTellsHowManyMatchesThereAreAndWhichIsSelected)
{
    write("Depo one\ndepo two\nother\n");
    open(1h);
    EXPECT_EQ(controller->matchText(), QString());
    EXPECT_FALSE(controller->isSearching());
    controller->setSearchText(u"depo"_s);
    EXPECT_TRUE(controller->isSearching());
    EXPECT_EQ(controller->matchText(), u"2 matches"_s);
    EXPECT_EQ(controller->nextMatch(0), (LogSearch::Match{0, 4}));
    EXPECT_EQ(controller->matchText(), u"1 of 2"_s);
    EXPECT_EQ(controller->nextMatch(4), (LogSearch::Match{9, 4}));
    EXPECT_EQ(controller->matchText(), u"2 of 2"_s);
    EXPECT_EQ(controller->previousMatch(9), (LogSearch::Match{0, 4}));
    controller->setSearchText(u"other"_s);
    EXPECT_EQ(controller->matchText(), u"1 match"_s);
    controller->setSearchText(u"nothing"_s);
    EXPECT_EQ(controller->matchText(), u"Not found"_s);
    EXPECT_FALSE(controller->hasMatches());
    EXPECT_EQ(controller->nextMatch(0), std::nullopt);
}

TEST_F(CustomLogWindowControllerTest, TheSelectedMatchKeepsItsNumberRightWhileOlderOnesGo)
{
    application.logger = std::make_shared<FileLogger>(path(u"large"_s), /*maximumFileSize=*/10'000'000);
    std::string lines = "depo\n";
    for (int i = 3; i < CustomLogWindowController::maximumLines; ++i)
        lines += "x\n";
    write(lines + "depo\n");
    open(1h);
    controller->setSearchText(u"depo"_s);
    ASSERT_TRUE(controller->nextMatch(5));
    EXPECT_EQ(controller->matchText(), u"2 of 2"_s);
    write("x\nx\n");
    controller->refreshLog();
    EXPECT_EQ(controller->matchText(), u"1 of 1"_s);
}

TEST_F(CustomLogWindowControllerTest, NewLinesAreSearchedToo)
{
    write("depo one\n");
    open(1h);
    controller->setSearchText(u"depo"_s);
    EXPECT_EQ(controller->matchText(), u"1 match"_s);
    QSignalSpy changed(controller.get(), &CustomLogWindowController::searchChanged);
    controller->getData("depo two\n");
    EXPECT_EQ(controller->matchText(), u"2 matches"_s);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(CustomLogWindowControllerTest, EscapeLeavesTheSearchFirstAndThenCloses)
{
    open(1h);
    QSignalSpy closed(controller.get(), &WindowController::closeRequested);
    controller->setSearchText(u"depo"_s);
    controller->escapePressed();
    EXPECT_EQ(controller->searchText(), QString());
    EXPECT_FALSE(controller->isSearching());
    EXPECT_EQ(controller->matchText(), QString());
    EXPECT_EQ(closed.count(), 0);
    controller->beginSearch();
    controller->escapePressed();
    EXPECT_EQ(closed.count(), 0);
    controller->escapePressed();
    EXPECT_EQ(closed.count(), 1);
}
