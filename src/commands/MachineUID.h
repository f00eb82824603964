#pragma once

#include <QString>

// Tells the service which machine a job came from.
namespace MachineUID {

// A stable identifier of this machine, or "unknown". Read afresh at every call. Taken from the identifier that the
// operating system keeps readable for every user (a hardware serial is not), and hashed, since that identifier itself
// must not leave the machine; then from the hardware's serial numbers. `root` stands before the paths read.
[[nodiscard]] QString machineUniqueID(const QString& root = QString());

} // namespace MachineUID
