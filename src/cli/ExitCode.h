#pragma once

// What the command line tells the program that called it. The numbers are promised in the manual page.
enum class ExitCode : int {
    Done = 0,
    Usage = 1,
    LoginRefused = 2,
    ServiceError = 3,
    Interrupted = 130,
};
