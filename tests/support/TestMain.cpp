#include "foundation/MainThread.h"
#include "support/LeakSuppressions.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    QCoreApplication application(argc, argv);
    const MainThread::Attachment mainThread;
    return RUN_ALL_TESTS();
}
