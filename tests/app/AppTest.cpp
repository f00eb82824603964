#include "AppTest.h"

#include "engine/JobModel.h"
#include "foundation/Log.h"
#include "settings/Preferences.h"
#include "settings/SettingsKey.h"

AppTest::AppTest()
{
    Preferences::initialize(defaults(), /*processorCount=*/4, path(QStringLiteral("support")), path(QString()));
    defaults().setValue(SettingsKey::TemporaryFolder, temporaryFolder());
    defaults().setValue(SettingsKey::DeliveryFolderPath, path(QStringLiteral("delivered")));
}

AppTest::~AppTest()
{
    end();
}

QuillpostAppDelegate& AppTest::make()
{
    const auto hosts = ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                               QString::fromStdString(service.fileHost()));
    m_delegate = std::make_unique<QuillpostAppDelegate>(
        QuillpostAppDelegate::Environment{.defaults = defaults(),
                                          .dialogs = dialogs,
                                          .hosts = std::get<ServiceHosts>(hosts),
                                          .open =
                                              [this](const QUrl& url) {
                                                  opened.append(url);
                                                  return canOpen;
                                              },
                                          .logFolder = path(QStringLiteral("log")),
                                          .copiesLogToStandardError = false});
    QObject::connect(m_delegate.get(), &QuillpostAppDelegate::terminated, [this] { ++terminatedCount; });
    return *m_delegate;
}

QuillpostAppDelegate& AppTest::makeLoggedIn()
{
    make().applicationDidFinishLaunching();
    app().userLoggedIn(QStringLiteral("demo"), QStringLiteral("demo1234"), QStringLiteral("4711"));
    return app();
}

void AppTest::end()
{
    if (!m_delegate)
        return;
    service.releaseHangs();
    EXPECT_TRUE(m_delegate->endAllWork());
    m_delegate.reset();
}

std::shared_ptr<Job> AppTest::addUnfinishedJob(const QString& name)
{
    const auto job = Job::job();
    job->setTranscriptFile(writeFile(name, "text"));
    job->addMediaFilesObject(MediaFile::mediaFileWithPath(writeFile(QStringLiteral("a.wav"), "no sound")));
    // The finder is not to move it while a test looks.
    app().jobModel().stopJobProcessing();
    app().jobModel().addJobsObject(job);
    app().jobModel().setHasUncompletedLocalJobs(true);
    return job;
}

QString AppTest::logText() const
{
    Log::flush();
    const QStringList files = m_delegate->fileLogger()->sortedLogFilePaths();
    return files.isEmpty() ? QString() : QString::fromUtf8(readFile(files.first()));
}
