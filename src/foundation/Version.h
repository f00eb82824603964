#pragma once

#include <QString>

// The version of every program of the project, as the service is told it.
[[nodiscard]] QString applicationVersion();
