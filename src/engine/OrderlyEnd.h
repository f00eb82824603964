#pragma once

#include <chrono>

class CUrlCommandProcessor;
class JobModel;

namespace OrderlyEnd {

// A transfer that hangs never holds up the end of a program by more than this.
inline constexpr std::chrono::milliseconds longestWait{800};

// Ends the engine's work and the transfers; ffmpeg children are gone afterwards. Nothing starts again. Main thread;
// what worker threads wait for there is run meanwhile. False when a transfer hangs even so: the caller then ends the
// program without the destructors that would wait for it.
[[nodiscard]] bool endAllWork(JobModel& jobModel, CUrlCommandProcessor& processor);

} // namespace OrderlyEnd
