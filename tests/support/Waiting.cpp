#include "support/Waiting.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <thread>

bool Waiting::until(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void Waiting::turnMainLoopFor(std::chrono::milliseconds time)
{
    [[maybe_unused]] const bool held = until([] { return false; }, time);
}
