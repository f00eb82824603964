#include "model/Job.h"
#include "support/TemporaryHome.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

class ThreadsTest : public TemporaryHome
{
protected:
    static constexpr int rounds = 2000;

    // Runs each body on a thread of its own, and `meanwhile` here until all have ended.
    template <typename Meanwhile>
    static void together(const std::vector<std::function<void()>>& bodies, Meanwhile meanwhile)
    {
        std::atomic<std::size_t> running = bodies.size();
        std::vector<std::thread> threads;
        for (const auto& body : bodies) {
            threads.emplace_back([&running, &body] {
                body();
                --running;
            });
        }
        while (running > 0)
            meanwhile();
        for (std::thread& thread : threads)
            thread.join();
    }
};

TEST_F(ThreadsTest, AReaderNeverSeesHalfAChange)
{
    const auto file = MediaFile::serverMediaFile(1);
    const QString longA = QString(500, u'a');
    const QString longB = QString(900, u'b');
    file->setName(longA);
    const auto write = [&](const QString& text) {
        for (int i = 0; i < rounds; ++i) {
            file->setName(text);
            file->setServerStatus(text);
            file->setDurationProcessed(static_cast<float>(i));
            file->setStatus(i % 18);
            file->setScoreValue(i);
        }
    };
    together({[&] { write(longA); }, [&] { write(longB); }}, [&] {
        const QString name = file->name();
        EXPECT_TRUE(name == longA || name == longB);
        const auto processed = file->processedValue();
        EXPECT_TRUE(processed && *processed >= 0 && *processed < rounds);
        EXPECT_GE(file->status(), 0);
        (void)file->serverStatus();
        (void)file->scoreValue();
        (void)file->encode();
    });
}

TEST_F(ThreadsTest, TwoFilesChangedAtOnceLeaveTheJobWithTheLaterResult)
{
    for (int round = 0; round < rounds / 4; ++round) {
        const auto job = Job::job();
        const auto a = MediaFile::serverMediaFile(1);
        const auto b = MediaFile::serverMediaFile(2);
        job->setMediaFiles({a, b});
        const auto work = [](const std::shared_ptr<MediaFile>& file) {
            file->setSourceDuration(10.F);
            file->setStatus(JobStatusConverting);
            file->setDurationProcessed(5.F);
            file->setStatus(JobStatusConverted);
        };
        together({[&] { work(a); }, [&] { work(b); }}, [&] {
            (void)job->status();
            (void)job->totalValue();
            (void)job->encode();
        });
        ASSERT_EQ(job->status(), JobStatusConverted);
        ASSERT_EQ(job->totalMediaDuration(), 20.F);
        ASSERT_EQ(job->totalValue(), 20);
        ASSERT_EQ(job->processedValue(), 10);
    }
}

TEST_F(ThreadsTest, FilesComeAndGoWhileTheyChange)
{
    const auto job = Job::job();
    const auto a = MediaFile::serverMediaFile(1);
    const auto b = MediaFile::serverMediaFile(2);
    job->setMediaFiles({a});
    const auto change = [](const std::shared_ptr<MediaFile>& file) {
        for (int i = 0; i < rounds; ++i) {
            file->setStatus(i % 9);
            file->setMp3UploadedFileSize(i);
        }
    };
    together({[&] { change(a); }, [&] { change(b); }}, [&] {
        job->addMediaFilesObject(b);
        EXPECT_GE(job->childs().size(), 1);
        job->removeMediaFilesObject(b);
    });
    EXPECT_EQ(job->mediaFiles(), (Job::MediaFiles{a}));
}

TEST_F(ThreadsTest, AJobMayEndWhileItsFileChanges)
{
    for (int round = 0; round < rounds / 20; ++round) {
        auto job = Job::job();
        const auto file = MediaFile::serverMediaFile(1);
        job->setMediaFiles({file});
        std::atomic<bool> changing = false;
        together({[&] {
                     for (int i = 0; i < 200; ++i) {
                         file->setStatus(i % 9);
                         file->setSourceDuration(static_cast<float>(i));
                         changing = true;
                     }
                 }},
                 [&] {
                     if (changing)
                         job.reset();
                 });
    }
}

TEST_F(ThreadsTest, TheChangeIsHandledOnTheThreadThatMadeIt)
{
    const auto job = Job::job();
    const auto file = MediaFile::serverMediaFile(1);
    job->setMediaFiles({file});
    std::thread::id handled;
    QObject::connect(
        job.get(), &MediaObject::statusChanged, job.get(), [&] { handled = std::this_thread::get_id(); },
        Qt::DirectConnection);
    std::thread::id changer;
    std::thread thread([&] {
        changer = std::this_thread::get_id();
        file->setStatus(JobStatusConverting);
        EXPECT_EQ(job->status(), JobStatusConverting);
    });
    thread.join();
    EXPECT_EQ(handled, changer);
}

} // namespace
