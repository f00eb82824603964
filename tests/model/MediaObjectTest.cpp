#include "model/MediaObject.h"

#include "foundation/Assertion.h"
#include "foundation/MainThread.h"
#include "model/MediaFile.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <QVariant>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class MediaObjectTest : public TemporaryHome
{};

TEST_F(MediaObjectTest, BeginsIdleUnnamedAndWithNothingToDo)
{
    const MediaObject object;
    EXPECT_EQ(object.status(), JobStatusIdle);
    EXPECT_EQ(object.name(), u"");
    EXPECT_FALSE(object.name().isNull());
    EXPECT_TRUE(object.serverStatus().isNull());
    EXPECT_EQ(object.totalValue(), 0);
    EXPECT_EQ(object.processedValue(), 0);
    EXPECT_EQ(object.scoreValue(), std::nullopt);
}

TEST_F(MediaObjectTest, IsALeafWithoutChilds)
{
    const MediaObject object;
    EXPECT_TRUE(object.isLeaf());
    EXPECT_TRUE(object.childs().isEmpty());
}

TEST_F(MediaObjectTest, AnnouncesEveryChangeAlsoToTheSameValue)
{
    MediaObject object;
    std::vector<QString> heard;
    QObject::connect(&object, &MediaObject::nameChanged, &object, [&] { heard.push_back(object.name()); });
    QObject::connect(&object, &MediaObject::totalValueChanged, &object, [&] { heard.push_back(u"total"_s); });
    QObject::connect(&object, &MediaObject::processedValueChanged, &object, [&] { heard.push_back(u"done"_s); });
    QObject::connect(&object, &MediaObject::scoreValueChanged, &object, [&] { heard.push_back(u"score"_s); });
    QObject::connect(&object, &MediaObject::statusChanged, &object,
                     [&] { heard.push_back(QString::number(object.status())); });
    object.setName(u"a"_s);
    object.setName(u"a"_s);
    object.setTotalValue(3);
    object.setProcessedValue(std::nullopt);
    object.setScoreValue(40);
    object.setStatus(7);
    object.setStatus(7);
    EXPECT_EQ(heard, (std::vector{u"a"_s, u"a"_s, u"total"_s, u"done"_s, u"score"_s, u"7"_s, u"7"_s}));
    EXPECT_EQ(object.totalValue(), 3);
    EXPECT_EQ(object.processedValue(), std::nullopt);
    EXPECT_EQ(object.scoreValue(), 40);
}

TEST_F(MediaObjectTest, ANewServerStatusAnnouncesTheStatusSoThatTheRowIsDrawnAgain)
{
    MediaObject object;
    std::vector<QString> heard;
    QObject::connect(&object, &MediaObject::statusChanged, &object,
                     [&] { heard.push_back(u"status "_s + object.serverStatus()); });
    QObject::connect(&object, &MediaObject::serverStatusChanged, &object, [&] { heard.push_back(u"server"_s); });
    object.setServerStatus(u"Joining"_s);
    EXPECT_EQ(heard, (std::vector{u"status Joining"_s, u"server"_s}));
    EXPECT_EQ(object.status(), JobStatusIdle);
}

TEST_F(MediaObjectTest, ItsPropertiesAreReadableByName)
{
    MediaObject object;
    EXPECT_TRUE(object.setProperty("status", 5));
    EXPECT_EQ(object.property("status"), QVariant(5));
    EXPECT_EQ(object.status(), JobStatusConverting);
    EXPECT_EQ(object.property("totalValue").value<std::optional<double>>(), std::optional<double>(0));
}

TEST_F(MediaObjectTest, AccessToItsFileIsLeftToDerivedClasses)
{
    MediaObject object;
    if constexpr (Assertion::stopsTheProgram) {
        EXPECT_DEATH(object.startAccessingBookmarkedURL(), "Implement in subclass");
        EXPECT_DEATH(object.stopAccessingBookmarkedURL(), "Implement in subclass");
    } else {
        const RecordedLog log;
        object.startAccessingBookmarkedURL();
        object.stopAccessingBookmarkedURL();
        EXPECT_EQ(log.count(u"Implement in subclass"_s), 2);
    }
}

// Where a media object ended: on the main thread or elsewhere.
struct End
{
    std::atomic<int> onMainThread = 0;
    std::atomic<int> elsewhere = 0;
};

std::shared_ptr<MediaFile> watched(End& end)
{
    auto file = MediaFile::serverMediaFile(1);
    QObject::connect(
        file.get(), &QObject::destroyed, file.get(),
        [&end] { ++(MainThread::isCurrent() ? end.onMainThread : end.elsewhere); }, Qt::DirectConnection);
    return file;
}

TEST_F(MediaObjectTest, LetGoOnAWorkerThreadItEndsOnTheMainThread)
{
    End end;
    auto file = watched(end);
    std::thread([held = std::move(file)]() mutable { held.reset(); }).join();
    EXPECT_EQ(end.onMainThread + end.elsewhere, 0);
    EXPECT_TRUE(Waiting::until([&] { return end.onMainThread == 1; }));
    EXPECT_EQ(end.elsewhere, 0);
}

TEST_F(MediaObjectTest, LetGoOnTheMainThreadItEndsAtOnce)
{
    End end;
    watched(end).reset();
    EXPECT_EQ(end.onMainThread, 1);
}

using MediaObjectDeathTest = MediaObjectTest;

// In a process of its own, because the main thread takes no more work afterwards.
TEST_F(MediaObjectDeathTest, LetGoAfterTheMainThreadTookItsLastWorkItStillEnds)
{
    const auto letGoAtTheEnd = [] {
        End end;
        auto queued = watched(end);
        auto late = watched(end);
        std::thread([held = std::move(queued)]() mutable { held.reset(); }).join();
        MainThread::shutDown();
        const bool queuedEnded = end.onMainThread == 1 && end.elsewhere == 0;
        std::thread([held = std::move(late)]() mutable { held.reset(); }).join();
        const bool lateEnded = end.elsewhere == 1;
        std::_Exit(queuedEnded && lateEnded ? 0 : 1);
    };
    EXPECT_EXIT(letGoAtTheEnd(), testing::ExitedWithCode(0), "");
}

} // namespace
