#include "Programs/UdpSockets.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace Zent::Discovery::Programs
{
namespace
{
namespace fs = std::filesystem;

/// A line of /proc/self/net/udp, which services see, too, that have nothing else of /proc than processes: its columns
/// are separated by blanks, numbers of sockets and users are decimal.
struct Row
{
    std::uint16_t Port = 0;
    std::uint32_t User = 0;
    std::uint64_t INode = 0;
    std::uint64_t Drops = 0;

    /// False for the line of titles.
    bool Read(const std::string& line)
    {
        std::istringstream columns(line);
        std::string slot;
        std::string local;
        std::string skipped;
        columns >> slot >> local >> skipped >> skipped >> skipped >> skipped >> skipped >> User >> skipped >> INode >>
            skipped >> skipped >> Drops;
        const std::size_t colon = local.rfind(':');
        if (!columns || colon == std::string::npos)
        {
            return false;
        }
        const char* const end = local.data() + local.size();
        return std::from_chars(local.data() + colon + 1, end, Port, 16).ptr == end;
    }
};

std::vector<Row> RowsOf(std::uint16_t port)
{
    std::vector<Row> rows;
    for (const char* const table :
         {"/proc/self/net/udp", "/proc/self/net/udp6"}) // a socket of both protocols is in the latter
    {
        std::ifstream lines(table);
        for (std::string line; std::getline(lines, line);)
        {
            Row row;
            if (row.Read(line) && row.Port == port)
            {
                rows.push_back(row);
            }
        }
    }
    return rows;
}

std::optional<std::uint32_t> ProcessId(std::string_view name)
{
    std::uint32_t id = 0;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, id);
    return error == std::errc() && stop == end ? std::optional(id) : std::nullopt;
}

using Owners = std::map<std::uint64_t, std::uint32_t>; // process ids by inode

/// Notes which of the sockets, by their names as links, the process has.
void NoteOwned(std::uint32_t process, const std::map<std::string, std::uint64_t>& wanted, Owners& owners)
{
    std::error_code error;
    for (fs::directory_iterator file("/proc/" + std::to_string(process) + "/fd", error), end; !error && file != end;
         file.increment(error))
    {
        std::error_code gone;
        const auto found = wanted.find(fs::read_symlink(file->path(), gone).native());
        if (found != wanted.end())
        {
            owners.emplace(found->second, process);
        }
    }
}

/// The processes that have the sockets on the port, whose rows it reads. Those of other users are seen by root alone.
Owners OwnersOf(std::uint16_t port, std::vector<Row>& rows)
{
    rows = RowsOf(port);
    std::map<std::string, std::uint64_t> wanted;
    for (const Row& row : rows)
    {
        wanted.emplace("socket:[" + std::to_string(row.INode) + "]", row.INode);
    }
    Owners owners;
    NoteOwned(static_cast<std::uint32_t>(getpid()), wanted, owners); // mostly the only one: the others take long
    if (owners.size() == wanted.size())
    {
        return owners;
    }
    // One that this process has closed meanwhile would pass for another program's.
    const std::vector<Row> remaining = RowsOf(port);
    std::erase_if(rows, [&remaining](const Row& row) {
        return std::ranges::find(remaining, row.INode, &Row::INode) == remaining.end();
    });
    std::error_code error;
    for (fs::directory_iterator process("/proc", error), end;
         !error && process != end && owners.size() != wanted.size(); process.increment(error))
    {
        if (const std::optional<std::uint32_t> id = ProcessId(process->path().filename().native()))
        {
            NoteOwned(*id, wanted, owners);
        }
    }
    return owners;
}

std::string ProgramOf(std::uint32_t process)
{
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
    return name;
}
} // namespace

std::vector<UdpSocket> UdpSockets::OnPort(std::uint16_t port)
{
    std::vector<Row> rows;
    const Owners owners = OwnersOf(port, rows);
    std::vector<UdpSocket> sockets;
    for (const Row& row : rows)
    {
        UdpSocket& socket = sockets.emplace_back();
        socket.User = row.User;
        socket.Drops = row.Drops;
        if (const auto owner = owners.find(row.INode); owner != owners.end())
        {
            socket.Process = owner->second;
            socket.Program = ProgramOf(owner->second);
            socket.IsOwn = owner->second == static_cast<std::uint32_t>(getpid());
        }
    }
    return sockets;
}
} // namespace Zent::Discovery::Programs
