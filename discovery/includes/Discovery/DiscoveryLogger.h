#pragma once

#include "system/Immortal.h"
#include "system/LogStreams/ILogStream.h"
#include "system/LogStreams/LogStreamChannel.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/Object.h"
#include "system/SmartPointer.h"
#include "system/String.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Monitor.h"

#include <atomic>

namespace Zent::Discovery
{
/// The process-wide log of the library: one file, opened by Init. Until then and after Close logging does nothing. All
/// operations may be called from any thread at any time.
///
/// The file is split when it has reached 10 MiB, at level Debug 1024 KiB, and three former files are kept.
class DiscoveryLogger final : public Nfx::System::Object
{
public:
    /// The logger of the process. Never destroyed: threads may still log while the process exits.
    static DiscoveryLogger& GetInstance();

    /// Opens the log, continuing an existing file; missing folders are created. An open log is closed once the
    /// folder is there. When the file cannot be opened the logger is left without a log, and Init may be called again.
    /// @throws ArgumentOutOfRangeException when the level is none of the named ones; nothing changes.
    /// @throws IOException, DirectoryNotFoundException or FileNotFoundException, with path and reason in the message.
    void Init(const Nfx::System::String& filePath, const Nfx::System::LogStreams::LogStreamLevel& level);

    /// Writes a line when the level is let through. Never throws: what cannot be written is lost.
    void Log(const Nfx::System::LogStreams::LogStreamChannel& channel,
             const Nfx::System::String& message,
             const Nfx::System::LogStreams::LogStreamLevel& level);

    /// Writes a Critical line with the exception's text and the place of its throw.
    void Log(const Nfx::System::LogStreams::LogStreamChannel& channel,
             const Nfx::System::String& message,
             const Nfx::System::Exception& exception);

    /// True when a line of this level would be written. Costs one load: ask before building a text that may be off.
    static bool IsEnabled(const Nfx::System::LogStreams::LogStreamLevel& level) noexcept
    {
        return level <= highestLevel.load(std::memory_order_relaxed);
    }

    /// Writes the closing line and releases the file. Lines that are logged later, or meanwhile, may be dropped.
    void Close();

private:
    friend class Nfx::System::Immortal<DiscoveryLogger>;
    using Stream = Nfx::System::SmartPointer<Nfx::System::LogStreams::ILogStream>;

    DiscoveryLogger() = default;

    Stream CurrentStream() const;
    void SetStream(const Stream& next, std::int32_t nextHighestLevel) NFX_REQUIRES(initLock);
    void CloseStream() NFX_REQUIRES(initLock);

    Nfx::System::Threading::Monitor initLock; // held while the log is opened or closed; taken before streamLock
    mutable Nfx::System::Threading::Monitor streamLock; // held to copy or replace the pointer, never while writing
    Nfx::System::String name;                           // stays empty: a line shows its channel instead
    Nfx::System::String filePath NFX_GUARDED_BY(initLock);
    Nfx::System::LogStreams::LogStreamLevel level NFX_GUARDED_BY(initLock){
        Nfx::System::LogStreams::LogStreamLevel::None};
    Stream stream NFX_GUARDED_BY(streamLock);

    // Of what the open log writes; 0 is below every level. There before the logger, which may find no memory to be
    // made.
    static constinit inline std::atomic<std::int32_t> highestLevel{0};
};
} // namespace Zent::Discovery
