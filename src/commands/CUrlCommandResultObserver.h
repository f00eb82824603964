#pragma once

class CUrlCommand;

// Told of the end of a command, exactly once, and of its progress. Not owned by the command; must outlive it.
class CUrlCommandResultObserver
{
public:
    virtual ~CUrlCommandResultObserver() = default;

    // The transfer ended with result 0. On the main thread.
    virtual void curlCommandDone(CUrlCommand& command) = 0;
    // The transfer ended with another result. On the main thread.
    virtual void curlCommandFailed(CUrlCommand& command) = 0;
    // Bytes so far and in all, for commands that report progress. On the main thread while the transfer runs, except
    // from DownloadJobFilesCommand, which reports files, on its worker thread.
    virtual void curlCommandProgress(CUrlCommand& command, double nowDL, double totalDL, double nowUL,
                                     double totalUL) = 0;
};
