#include "Fleet/Command.h"
#include "Fleet/FleetReading.h"
#include "support/FuzzTarget.h"
#include "support/MemoryFaults.h"

#include <stdexcept>

using namespace Zent::Discovery::Fleet;

namespace
{
/// What a reader accepts, it reads again from what it writes.
template <class T>
void FuzzDocument(std::string_view input)
{
    try
    {
        const std::string written = T::Parse(input).ToJson();
        Fuzzing::Check(T::Parse(written).ToJson() == written, "what was written is read alike");
    }
    catch (const std::invalid_argument&)
    {
    }
}

void FuzzManifest(std::string_view input)
{
    ManifestReader reader;
    for (const std::size_t part : {std::size_t{0}, std::size_t{1}})
    {
        try
        {
            reader.Take(part, input);
        }
        catch (const std::invalid_argument&)
        {
        }
    }
    if (const std::optional<Manifest::Revisions> whole = reader.Whole())
    {
        Fuzzing::Check(whole->size() == reader.Devices(), "a whole manifest has as many devices as it tells");
    }
}

/// Whatever the topics of a site hold, it has been read at some time.
void FuzzReading(std::string_view input)
{
    ReadingListener nobody;
    FleetReading reading({"a"}, SiteReading::ReadingScope::Events, nobody);
    const SiteTopics topics("a");
    const std::string device = topics.Device("02-00-00-00-00-01");
    for (SiteReading::Time now{0}; !reading.IsOver(); now = reading.NextTime())
    {
        Fuzzing::Check(now < SiteReading::RetryInterval, "a reading comes to its end");
        reading.Advance(now);
        for (const std::string& topic :
             {topics.State(), topics.Manifest(), topics.ManifestPart(1), device, topics.Events()})
        {
            reading.Take(topic, input, topic != topics.Events(), now);
        }
        reading.Advance(now);
        Fuzzing::Check(reading.Sites().front().Questions() <= FleetReading::MaximumQuestions, "questions are limited");
    }
}

void FuzzCommand(std::string_view input)
{
    const SiteTopics topics("a");
    const CommandMessage message{std::string(input), topics.Replies("b") + "1", "", 1};
    try
    {
        const Command command = Command::Read(message, topics);
        Verdict{"done"}.AuditLine(message, &command, topics, {});
    }
    catch (const Refusal& refusal)
    {
        const std::string line = Verdict::Of(refusal).AuditLine(message, nullptr, topics, {});
        Fuzzing::Check(line.find('\n') == std::string::npos, "a refusal is one line of the log");
    }
}
} // namespace

void Fuzzing::Fuzz(std::string_view input)
{
    // The documents' library allocates in destructors: a program without memory ends, and its service starts it again.
    Tests::MemoryFaults::Clear();
    FuzzDocument<DeviceRecord>(input);
    FuzzDocument<SiteState>(input);
    FuzzDocument<SiteEvent>(input);
    FuzzDocument<Verdict>(input);
    FuzzManifest(input);
    FuzzReading(input);
    FuzzCommand(input);
    if (const std::optional<Topic> topic = Topic::Parse(input))
    {
        Check(SiteTopics::IsName(topic->Site), "a topic of a site names one");
    }
}
