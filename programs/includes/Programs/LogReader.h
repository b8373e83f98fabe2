#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace Zent::Discovery::Programs
{
/// What a log of the library tells about what was dropped. Not each level tells all of it: the versions need Standard,
/// the senders and the refused priority Debug.
struct LogSummary
{
    std::size_t VersionDropped = 0;       // datagrams
    std::set<std::string> Versions;       // of these
    std::set<std::string> VersionSenders; // addresses
    std::size_t FormatDropped = 0;        // datagrams
    std::string Defect;                   // of the first of these, when the log names it
    std::set<std::string> FormatSenders;  // addresses
    std::size_t QueueFull = 0;            // datagrams, requests and notifications
    std::size_t Oversize = 0;             // datagrams
    bool SharesPort = false;
    bool IsRealTimeRefused = false;
};

/// Reads the library's log, whose lines the documentation of the log promises. Lines of one datagram come one after the
/// other on their channels.
class LogReader final
{
public:
    /// Takes the next line, without its end.
    void Add(std::string_view line);

    /// Of the last use of the library that the log tells of: all since its "Start Log".
    const LogSummary& Summary() const { return summary; }

private:
    void AddOfParser(std::string_view message);

    LogSummary summary;
    std::set<std::string> LogSummary::*senders = &LogSummary::FormatSenders; // of the last dropped datagram
    std::string version;                                                     // of the last mismatch
    std::string defect;                                                      // that was named last
};
} // namespace Zent::Discovery::Programs
