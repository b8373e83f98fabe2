#pragma once

#include "Inventory/Time.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// What a search has come to, at its end or so far.
struct SearchReport
{
    struct Round
    {
        enum class Question
        {
            All,   // all devices were asked at once
            Sweep, // the addresses of the local networks, one by one
            List   // the addresses that the user named, one by one
        };

        Question Asked = Question::All;
        std::size_t Answers = 0; // a device that answers on two interfaces counts twice
        std::size_t New = 0;
        std::optional<std::uint64_t> Lost = {}; // by this machine; nothing when the system does not tell
        bool IsCrowded = false;                 // so many answers came at once that some may have been lost

        const char* AskedName() const;
    };

    std::size_t Devices = 0;
    std::vector<Round> Rounds;
    double EstimatedUnseen = 0;
    bool Complete = false;
    bool IsOver = false;
    Time Elapsed{0};

    /// Nothing when it is not known of each round.
    std::optional<std::uint64_t> LostHere() const;

    /// {"Devices":1000,"Rounds":[{"Asked":"all","Answers":981,"New":981,"Lost":12},...],"LostHere":12,
    /// "EstimatedUnseen":0.0,"Complete":true,"Seconds":2.1}; what is unknown is null.
    std::string ToJson() const;

    /// For people: 1000 devices, 3 rounds: 981, 19, 0 new; 12 answers lost in this machine's receive buffer; estimated
    /// unseen: 0
    std::string ToString() const;
};
} // namespace Zent::Discovery::Inventory
