#include "Discovery/DiscoveryLogger.h"
#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "support/FuzzTarget.h"
#include "support/MemoryFaults.h"

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using namespace Zent::Discovery;

namespace
{
/// Changes the level of the log when it is another one.
void UseLevel(const LogStreamLevel& level)
{
    const Tests::MemoryFaults::Scope spared(false);
    static std::int32_t current = 0;
    if (level != current)
    {
        DiscoveryLogger::GetInstance().Init("/dev/null", level);
        current = level;
    }
}
} // namespace

/// Takes the text of a datagram to the message and back.
void Fuzzing::Fuzz(std::string_view input)
{
    UseLevel(input.size() % 8 == 0 ? LogStreamLevel::None : LogStreamLevel::Debug);
    const DiscoveryMessageDeserializer deserializer;
    SmartPointer<DiscoveryMessage> message;
    if (!IsAccepted([&] { message = deserializer.Deserialize(String(input)); }))
    {
        return;
    }
    const String written = deserializer.Serialize(*message);
    const SmartPointer<DiscoveryMessage> again = deserializer.Deserialize(written);
    Check(again->GetMessageType() == message->GetMessageType(), "a written message is of the same kind");
    Check(deserializer.Serialize(*again) == written, "a written message reads as the same message");
}
