#include "AuditLog.h"

#include "Log.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Zent::Discovery::Agent
{
AuditLog::AuditLog(const std::string& folder, Log& log)
    : path(folder.empty() ? "" : folder + "/commands.log")
    , log(log)
{
    if (!path.empty() && !std::ofstream(path, std::ios::app))
    {
        throw std::runtime_error("cannot write the log of commands \"" + path +
                                 "\": " + std::generic_category().message(errno));
    }
}

void AuditLog::Write(const std::string& line)
{
    log.Info("command: " + line);
    if (path.empty())
    {
        return;
    }
    std::error_code error;
    if (const auto size = std::filesystem::file_size(path, error); !error && size > MaximumBytes)
    {
        std::filesystem::rename(path, path + ".1", error);
    }
    std::ofstream file(path, std::ios::app);
    file << line << '\n';
    if (!file.flush())
    {
        log.Error("cannot write the log of commands \"" + path + '"');
    }
}
} // namespace Zent::Discovery::Agent
