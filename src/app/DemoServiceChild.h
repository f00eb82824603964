#pragma once

#include "foundation/Error.h"

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <chrono>
#include <variant>

// The stand-in service as a child of this program: it ends with it, also when this program crashes. Main thread.
class DemoServiceChild
{
public:
    struct Account
    {
        QString secureHost;
        QString fileHost;
        QString userName;
        QString password;
    };

    DemoServiceChild();
    ~DemoServiceChild(); // ends the child
    DemoServiceChild(const DemoServiceChild&) = delete;
    DemoServiceChild& operator=(const DemoServiceChild&) = delete;

    // Starts it and waits until it listens.
    [[nodiscard]] std::variant<Account, Error> start(const QString& program = programPath());

    // Beside this program, else on PATH; empty when it is not installed.
    [[nodiscard]] static QString programPath();

private:
    [[nodiscard]] Account account() const;

    QTemporaryDir m_folder;
    QProcess m_process;
};
