#pragma once

#include "cli/Runs.h"

// Checks the account and prints its contact ID.
class LoginRun : public Run
{
    Q_OBJECT
public:
    using Run::Run;
    void start() override;
};
