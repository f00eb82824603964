#pragma once

#include "foundation/Error.h"

#include <memory>

class FileLogger;

// What the engine and the controllers ask of the application without knowing it. A program implements it once and
// hands it in; it outlives everything that it was handed to. Called on the main thread.
class ApplicationServices
{
public:
    virtual ~ApplicationServices() = default;

    // Tells the user of a failure. Errors of ErrorDomain::SyncBase are logged, reported to the service with the log,
    // and collected; others are shown at once.
    virtual void presentError(const Error& error) = 0;

    // The logger whose newest file the service may ask for, or null where none was set up.
    [[nodiscard]] virtual std::shared_ptr<FileLogger> fileLogger() const = 0;
};
