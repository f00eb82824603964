#pragma once

#include "DesktopRun.h"

#include <QString>

class JobModel;
class QTreeView;

namespace Bench {

constexpr int filesOfAJob = 4;

// The desktop program in this process, logged in, with its main window shown and so many jobs in its list, each with
// four files: jobs of this computer whose files are uploaded, so that the service's words move them. It polls the
// service no more. Its copy of the log on standard error goes to a file. Main thread.
class ManyJobs
{
public:
    enum class Kind {
        Local,
        Server // the service alone knows them
    };

    ManyJobs(int count, Kind kind);

    [[nodiscard]] JobModel& jobModel();
    [[nodiscard]] static QTreeView& list();
    // Until the list shows all that the jobs say, and nothing is left to be saved.
    void turnUntilShown();

    // The service's reply: of each job, and of each file. Words of one turn differ from those of the next.
    [[nodiscard]] static QString statusReply(int count, int turn);

private:
    void addLocalJobs(int count);

    DesktopRun m_run;
};

} // namespace Bench
