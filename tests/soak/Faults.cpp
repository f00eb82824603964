#include "Faults.h"

#include <array>

namespace {

constexpr std::array orders{
    "fault jobdetails.php status",
    "fault jobdetails.php reset",
    "fault jobdetails.php reply Account on hold",
    "fault add_segment.php status",
    "fault add_segment.php reply later",
    "fault set_media_format.php reset",
    "fault test_custupload2.php status",
    "fault test_custupload2.php reset",
    "fault test_custupload2.php reply DISK FULL",
    "fault test_custupload2.php cut",
    "fault test_custupload2.php slow",
    "fault checkstatus.php status",
    "fault checkstatus.php reset",
    "fault checkstatus.php reply <html>Depo: not a reply",
    "fault get_instructions.php reply OK SendLogs",
    "fault get_instructions.php reset",
    "fault qpt_debug_upload.php status",
    "fault miscstuff.php status",
    "fault miscstuff.php reset",
};

} // namespace

int Faults::below(int end)
{
    return static_cast<int>(m_random() % static_cast<unsigned>(end));
}

bool Faults::isOneIn(int number)
{
    return below(number) == 0;
}

std::optional<QString> Faults::next()
{
    if (!isOneIn(3))
        return std::nullopt;
    return QString::fromLatin1(orders.at(static_cast<std::size_t>(below(static_cast<int>(orders.size())))));
}
