#include "cli/CliApplication.h"
#include "cli/CommandLine.h"
#include "cli/Runs.h"
#include "foundation/HeapArenas.h"
#include "foundation/Interruption.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/Secrets.h"
#include "foundation/UserFolders.h"
#include "foundation/Version.h"
#include "settings/PasswordVariables.h"

#include <QCoreApplication>
#include <QTimer>

#include <clocale>

int main(int argc, char** argv)
{
    PasswordVariables variables = PasswordVariables::take();
    HeapArenas::keepFew();
    Secrets::keepMemoryPrivate();
    Interruption::install();
    auto read = CommandLine::read(argc, argv);
    if (const auto* const code = std::get_if<ExitCode>(&read))
        return static_cast<int>(*code);
    const auto& line = std::get<CommandLine>(read);

    QCoreApplication qtApplication(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // Qt takes the user's; numbers on the wire and in JSON have points.
    QCoreApplication::setApplicationName(UserFolders::executableName);
    QCoreApplication::setApplicationVersion(applicationVersion());
    const MainThread::Attachment mainThread;

    int code = 0;
    {
        CliApplication application(line, std::move(variables));
        const auto run = Run::make(application, line);
        const Interruption interruption([&] { application.interrupt(); });
        QTimer::singleShot(0, run.get(), [&] { run->start(); });
        code = QCoreApplication::exec();
    }
    Log::shutDown();
    return code;
}
