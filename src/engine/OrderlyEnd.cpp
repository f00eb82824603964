#include "engine/OrderlyEnd.h"

#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"

bool OrderlyEnd::endAllWork(JobModel& jobModel, CUrlCommandProcessor& processor)
{
    jobModel.endWork();
    processor.stop();
    processor.cancelRunningCommands();
    return processor.waitUntilAllEnded(longestWait);
}
