#pragma once

#include <QString>

// What the windows call a delivery format: its name, in the user's words where the service's word is none ("all",
// "custom"). Empty for a number that is no format. Any thread.
[[nodiscard]] QString deliveryFormatTitle(int deliveryFormat);
