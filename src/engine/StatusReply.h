#pragma once

#include <QString>

#include <vector>

// What the service's reply to a status request says. Records are recognised anywhere in the text, everything else is
// skipped, and nothing is ever an error.
namespace StatusReply {

// "Depo: 883 Smith 2 Mar.txt Splitting": the rest of the line is split at its last blank; a rest without a blank
// leaves both texts empty.
struct Deposition
{
    int number = 0; // 0 when there is none
    QString transcriptName;
    QString status;

    bool operator==(const Deposition&) const = default;
};

// "Segment: 883 2 Joined 247000 100".
struct Segment
{
    int deposition = 0;
    int number = 0; // from 1
    QString status;
    int duration = -1;
    int score = -1; // none

    bool operator==(const Segment&) const = default;
};

[[nodiscard]] std::vector<Deposition> depositions(const QString& reply);
// A record without its two numbers and its status is left out.
[[nodiscard]] std::vector<Segment> segments(const QString& reply);

// A well-formed reply of so many depositions, numbered from 0, each with so many segments. For diagnosis.
[[nodiscard]] QString simulated(int numberOfDepositions, int numberOfSegments);

} // namespace StatusReply
