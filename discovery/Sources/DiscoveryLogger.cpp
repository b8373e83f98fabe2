#include "Discovery/DiscoveryLogger.h"

#include "Discovery/ProductInfo.h"
#include "system/Exceptions.h"
#include "system/IO/DirectoryInfo.h"
#include "system/IO/Path.h"
#include "system/LogStreams/LogStream.h"

using Nfx::System::ArgumentOutOfRangeException;
using Nfx::System::Exception;
using Nfx::System::Immortal;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::IO::DirectoryInfo;
using Nfx::System::IO::Path;
using Nfx::System::LogStreams::LogStream;
using Nfx::System::LogStreams::LogStreamChannel;
using Nfx::System::LogStreams::LogStreamHeader;
using Nfx::System::LogStreams::LogStreamLevel;
using Nfx::System::Threading::Lock;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/DiscoveryLogger";
constexpr std::int32_t NothingWritten = 0; // below every level
constexpr std::int32_t KeptFiles = 3;
constexpr std::int32_t DebugMaximumSize = 1024; // KiB: at Debug the files fill fast and are sent around
} // namespace

DiscoveryLogger& DiscoveryLogger::GetInstance()
{
    static const Immortal<DiscoveryLogger> logger;
    return logger.Get();
}

void DiscoveryLogger::Init(const String& newFilePath, const LogStreamLevel& newLevel)
{
    if (!LogStreamLevel::IsDefined(newLevel))
    {
        throw ArgumentOutOfRangeException(SourceName, __LINE__);
    }
    const Lock guard(initLock);
    filePath = newFilePath;
    level = newLevel;
    const String fullPath = Path::GetFullPath(filePath);
    DirectoryInfo(Path::GetDirectoryName(fullPath)).Create();
    CloseStream();
    const LogStreamHeader header{ProductInfo::Author, ProductInfo::Company, ProductInfo::Product};
    const SmartPointer<LogStream> opened(new LogStream(fullPath, level, header));
    opened->SetFileCount(KeptFiles);
    const std::int32_t highest = level == LogStreamLevel::None ? NothingWritten : std::int32_t{level};
    if (highest >= LogStreamLevel::Debug)
    {
        opened->SetMaximumSize(DebugMaximumSize);
    }
    SetStream(opened, highest);
}

void DiscoveryLogger::Log(const LogStreamChannel& channel, const String& message, const LogStreamLevel& messageLevel)
{
    if (!IsEnabled(messageLevel))
    {
        return;
    }
    const Stream current = CurrentStream();
    if (!current.IsNull())
    {
        current->Write(channel, message, messageLevel);
    }
}

void DiscoveryLogger::Log(const LogStreamChannel& channel, const String& message, const Exception& exception)
{
    if (!IsEnabled(LogStreamLevel::Critical))
    {
        return;
    }
    const Stream current = CurrentStream();
    if (!current.IsNull())
    {
        current->Write(channel, message, exception);
    }
}

void DiscoveryLogger::Close()
{
    const Lock guard(initLock);
    CloseStream();
}

DiscoveryLogger::Stream DiscoveryLogger::CurrentStream() const
{
    const Lock guard(streamLock);
    return stream;
}

void DiscoveryLogger::SetStream(const Stream& next, std::int32_t nextHighestLevel)
{
    {
        const Lock guard(streamLock);
        stream = next;
    }
    highestLevel.store(nextHighestLevel, std::memory_order_relaxed);
}

void DiscoveryLogger::CloseStream()
{
    const Stream current = CurrentStream();
    if (current.IsNull())
    {
        return;
    }
    SetStream(nullptr, NothingWritten);
    current->Close(); // here and now, though a thread that is about to log may hold the stream a little longer
}
} // namespace Zent::Discovery
