#include "engine/SavedStateLock.h"

#include "support/TemporaryHome.h"

#include <QFileInfo>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class SavedStateLockTest : public TemporaryHome
{
protected:
    const QString stateFile = writeFile(u"temp/State_demo.archive"_s, "{}");
};

TEST_F(SavedStateLockTest, IsHeldByOneAtATime)
{
    SavedStateLock first;
    SavedStateLock second;
    EXPECT_TRUE(first.take(stateFile));
    EXPECT_FALSE(second.take(stateFile));
}

TEST_F(SavedStateLockTest, IsFreeAgainWhenItsHolderIsGone)
{
    {
        SavedStateLock first;
        ASSERT_TRUE(first.take(stateFile));
    }
    SavedStateLock second;
    EXPECT_TRUE(second.take(stateFile));
}

TEST_F(SavedStateLockTest, CanBeTriedAgain)
{
    auto first = std::make_unique<SavedStateLock>();
    SavedStateLock second;
    ASSERT_TRUE(first->take(stateFile));
    ASSERT_FALSE(second.take(stateFile));
    first.reset();
    EXPECT_TRUE(second.take(stateFile));
}

TEST_F(SavedStateLockTest, TellsWhoHoldsIt)
{
    SavedStateLock lock;
    ASSERT_TRUE(lock.take(stateFile));
    EXPECT_EQ(SavedStateLock::holder(stateFile), u"test_engine (process %1)"_s.arg(::getpid()));
}

TEST_F(SavedStateLockTest, AHolderThatLeftNoNameIsAnotherProgram)
{
    EXPECT_EQ(SavedStateLock::holder(path(u"temp/State_nobody.archive"_s)), u"another program"_s);
}

TEST_F(SavedStateLockTest, OtherUsersJobsAreOthers)
{
    SavedStateLock first;
    SavedStateLock second;
    EXPECT_TRUE(first.take(stateFile));
    EXPECT_TRUE(second.take(path(u"temp/State_jane.archive"_s)));
}

TEST_F(SavedStateLockTest, AFolderWithoutRoomForALockKeepsNobodyFromWorking)
{
    SavedStateLock lock;
    EXPECT_TRUE(lock.take(path(u"no such folder/State_demo.archive"_s)));
}

} // namespace
