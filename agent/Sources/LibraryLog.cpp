#include "LibraryLog.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace Zent::Discovery::Agent
{
namespace
{
/// For the lines of some 4,000 datagrams; what a user may ask for as a rule.
constexpr int PipeBytes = 1024 * 1024;
} // namespace

LibraryLog::LibraryLog()
{
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
    {
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe for the library's log");
    }
    fcntl(ends[1], F_SETPIPE_SZ, PipeBytes); // a smaller one will do
}

LibraryLog::~LibraryLog()
{
    close(ends[0]);
    close(ends[1]);
}

std::string LibraryLog::Path() const
{
    return "/proc/self/fd/" + std::to_string(ends[1]);
}

const Programs::LogSummary& LibraryLog::Read()
{
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): read writes it
    for (ssize_t size = 0; (size = read(ends[0], buffer.data(), buffer.size())) > 0;)
    {
        unfinished.append(buffer.data(), static_cast<std::size_t>(size));
        std::string_view rest = unfinished;
        for (std::size_t end = 0; (end = rest.find('\n')) != std::string_view::npos; rest.remove_prefix(end + 1))
        {
            reader.Add(rest.substr(0, end));
        }
        unfinished.erase(0, unfinished.size() - rest.size());
    }
    return reader.Summary();
}
} // namespace Zent::Discovery::Agent
