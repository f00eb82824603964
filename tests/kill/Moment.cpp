#include "Moment.h"

#include <fmt/format.h>

#include <array>
#include <random>

namespace {

// Not the library's distributions, which differ from one library to another.
class Dice
{
public:
    Dice(std::uint64_t seed, int scenario)
    {
        std::seed_seq sequence{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32U),
                               static_cast<std::uint32_t>(scenario)};
        m_numbers.seed(sequence);
    }

    double share() { return static_cast<double>(m_numbers() >> 11U) * 0x1.0p-53; }
    bool happensIn(double part) { return share() < part; }

    Moment moment()
    {
        struct Weight
        {
            Moment::Aim aim;
            double upTo;
        };
        static constexpr std::array<Weight, 9> weights{{{Moment::Aim::Time, 0.35},
                                                        {Moment::Aim::RequestBody, 0.42},
                                                        {Moment::Aim::RequestReceived, 0.48},
                                                        {Moment::Aim::BeforeReply, 0.57},
                                                        {Moment::Aim::MiddleOfReply, 0.62},
                                                        {Moment::Aim::AfterReply, 0.73},
                                                        {Moment::Aim::SavedJobs, 0.85},
                                                        {Moment::Aim::Audio, 0.90},
                                                        {Moment::Aim::Delivery, 1.0}}};
        constexpr double longestDelay = 30'000; // microseconds
        Moment moment;
        const double drawn = share();
        for (const Weight& weight : weights) {
            moment.aim = weight.aim;
            if (drawn < weight.upTo)
                break;
        }
        moment.share = share();
        // Half of them at once, where a file is the matter: the next change follows within a fraction of this.
        const double delay = share() * longestDelay;
        if (moment.isAtRequest() || happensIn(0.5))
            moment.delay = std::chrono::microseconds(static_cast<int>(delay));
        return moment;
    }

private:
    std::mt19937_64 m_numbers;
};

} // namespace

bool Moment::isAtRequest() const
{
    return aim >= Aim::RequestBody && aim <= Aim::AfterReply;
}

const char* nameOf(Moment::Aim aim)
{
    switch (aim) {
    case Moment::Aim::Time:
        return "any time";
    case Moment::Aim::RequestBody:
        return "middle of a request";
    case Moment::Aim::RequestReceived:
        return "request received";
    case Moment::Aim::BeforeReply:
        return "before a reply";
    case Moment::Aim::MiddleOfReply:
        return "middle of a reply";
    case Moment::Aim::AfterReply:
        return "after a reply";
    case Moment::Aim::SavedJobs:
        return "saving jobs";
    case Moment::Aim::Audio:
        return "writing audio";
    case Moment::Aim::Delivery:
        return "delivering files";
    }
    return "";
}

std::string Moment::text() const
{
    return fmt::format("{} {:.3f} +{} us", nameOf(aim), share, delay.count());
}

void Road::addRequest(const std::string& endpoint, int number)
{
    constexpr int mostPolls = 3;
    const bool isPoll = endpoint == "checkstatus.php" || endpoint == "get_instructions.php";
    if (!isPoll || number < mostPolls)
        requests.push_back({endpoint, number});
}

Plan::Plan(std::uint64_t planSeed, int number) : seed(planSeed), scenario(number)
{
    Dice dice(seed, scenario);
    const double many = dice.share();
    orders = many < 0.02 ? 6 : many < 0.1 ? 3 : 1;
    again = dice.happensIn(0.25);
    for (int order = 0; order < orders; ++order)
        ofSubmissions.push_back(dice.moment());
    while (ofResumes.size() < 4 && dice.happensIn(0.4))
        ofResumes.push_back(dice.moment());
    const double cut = dice.share();
    if (dice.happensIn(0.12))
        savedJobsCutAt = cut;
}

std::string Plan::text() const
{
    std::string words = fmt::format("seed {} scenario {}: {} order{}{}; killed at", seed, scenario, orders,
                                    orders == 1 ? "" : "s", again ? ", a segment asked again" : "");
    for (const Moment& moment : ofSubmissions)
        words += " [" + moment.text() + "]";
    for (const Moment& moment : ofResumes)
        words += " and resuming [" + moment.text() + "]";
    if (savedJobsCutAt)
        words += fmt::format("; saved jobs cut at {:.3f}", *savedJobsCutAt);
    return words;
}
