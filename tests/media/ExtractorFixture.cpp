#include "ExtractorFixture.h"

#include "foundation/MainThread.h"
#include "support/GeneratedMedia.h"
#include "support/Waiting.h"

#include <utility>

void RecordedErrors::audioExtractorHandleError(AudioExtractor& extractor, const Error& error)
{
    EXPECT_NE(extractor.inputMediaFile(), nullptr);
    const std::scoped_lock lock(m_mutex);
    m_errors.append(error);
    m_thread = std::this_thread::get_id();
}

QList<Error> RecordedErrors::errors() const
{
    const std::scoped_lock lock(m_mutex);
    return m_errors;
}

QStringList RecordedErrors::descriptions() const
{
    QStringList descriptions;
    for (const Error& error : errors())
        descriptions.append(error.localizedDescription);
    return descriptions;
}

std::thread::id RecordedErrors::thread() const
{
    const std::scoped_lock lock(m_mutex);
    return m_thread;
}

NoDescriptorsLeft::NoDescriptorsLeft()
{
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &m_old), 0);
    const rlimit none{0, m_old.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
}

NoDescriptorsLeft::~NoDescriptorsLeft()
{
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &m_old), 0);
}

Worker::Worker(std::function<void()> work)
    : m_thread([this, work = std::move(work)] {
          work();
          m_hasEnded = true;
      })
{}

Worker::~Worker()
{
    if (m_thread.joinable())
        m_thread.join();
}

bool Worker::join(std::chrono::milliseconds limit)
{
    const bool ended = Waiting::until([this] { return hasEnded(); }, limit);
    if (ended && m_thread.joinable())
        m_thread.join();
    return ended;
}

std::shared_ptr<MediaFile> ExtractorFixture::mediaFile(const QString& path) const
{
    return MediaFile::mediaFileWithPath(path);
}

std::shared_ptr<AudioExtractor> ExtractorFixture::scriptedExtractor(const std::shared_ptr<MediaFile>& file)
{
    auto extractor = AudioExtractor::audioExtractorWithInputMediaFile(file, m_ffmpeg.path());
    extractor->setObserver(&m_observer);
    return extractor;
}

std::shared_ptr<AudioExtractor> ExtractorFixture::realExtractor(const std::shared_ptr<MediaFile>& file)
{
    auto extractor = AudioExtractor::audioExtractorWithInputMediaFile(file, GeneratedMedia::ffmpegPath());
    extractor->setObserver(&m_observer);
    return extractor;
}

void ExtractorFixture::extractInfo(const std::shared_ptr<AudioExtractor>& extractor)
{
    run([extractor] { extractor->extractInfo(); });
}

void ExtractorFixture::convertToMp3(const std::shared_ptr<AudioExtractor>& extractor, const QString& path)
{
    run([extractor, path] { extractor->convertToMp3(path); });
}

void ExtractorFixture::run(const std::function<void()>& work)
{
    Worker worker(work);
    EXPECT_TRUE(worker.join());
    MainThread::drain();
}
