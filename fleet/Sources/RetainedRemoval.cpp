#include "Fleet/RetainedRemoval.h"

#include "Fleet/Topics.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Zent::Discovery::Fleet
{
namespace
{
/// Of the subscription; removals are counted from the next one.
constexpr std::size_t Subscription = 0;
constexpr std::size_t First = 1;
} // namespace

RetainedRemoval::RetainedRemoval(std::string root, const std::vector<std::string>& known)
    : root(std::move(root))
{
    for (const std::string& topic : known)
    {
        RemoveKnown(topic);
    }
}

void RetainedRemoval::TakeAnswer(const Answer& answer, Time now)
{
    lastProgress = now;
    if (answer.Number == Subscription)
    {
        if (answer.IsRefusal())
        {
            trouble = root + "#: " + answer.Text;
            isOver = true;
        }
        return;
    }
    isTried = true;
    const auto topic = underWay.extract(answer.Number);
    if (topic && answer.IsRefusal())
    {
        Leave(topic.mapped(), answer.Text);
        isOver = true;
    }
}

void RetainedRemoval::TakeMessage(const Message& message, Time now)
{
    if (!message.IsRetained || message.Payload.empty() || !message.Topic.starts_with(root))
    {
        return; // what nobody keeps
    }
    lastProgress = now;
    hasCome = true;
    TakeManifest(message);
    Target& target = targets[message.Topic];
    if (target.IsLeft)
    {
        return;
    }
    if (++target.Sightings > MaximumAttempts)
    {
        Leave(message.Topic, "somebody goes on writing it");
        return;
    }
    Remove(message.Topic);
}

std::vector<Conversation::Step> RetainedRemoval::Advance(Time now)
{
    std::vector<Step> steps;
    if (isAsking && underWay.empty() && now >= NextTime())
    {
        isAsking = false;
        steps.push_back({Step::StepKind::Unsubscribe, root + "#"});
        isOver = !hasRemoved;
    }
    if (!isAsking && !isOver)
    {
        isAsking = true;
        hasCome = false;
        hasRemoved = false;
        lastProgress = now;
        steps.push_back({Step::StepKind::Subscribe, root + "#", Subscription});
    }
    const std::size_t most = isTried ? lastNumber : IsAboutToTry() && now >= NextTime() ? First : sent;
    while (sent < most)
    {
        ++sent;
        steps.push_back(
            {.Kind = Step::StepKind::Publish, .Topic = underWay.at(sent), .Number = sent, .IsRetained = true});
    }
    return steps;
}

Conversation::Time RetainedRemoval::NextTime() const
{
    return isOver              ? Time::max()
           : IsAboutToTry()    ? lastProgress + PauseTime
           : !underWay.empty() ? Time::max()
           : !isAsking         ? Time{0}
                               : lastProgress + (hasCome ? PauseTime : AnswerTime);
}

std::size_t RetainedRemoval::Left() const
{
    std::set<std::string_view> left; // those that wait may be there twice
    for (const auto& [number, topic] : underWay)
    {
        left.insert(topic);
    }
    for (const auto& [topic, target] : targets)
    {
        if (target.IsLeft)
        {
            left.insert(topic);
        }
    }
    return left.size();
}

/// A broker that breaks the connection with something unread takes its last words back, which would be the refusal: the
/// first removal goes when nothing is on its way.
bool RetainedRemoval::IsAboutToTry() const
{
    return sent == 0 && !underWay.empty();
}

void RetainedRemoval::TakeManifest(const Message& message)
{
    const std::optional<Topic> topic = Topic::Parse(message.Topic);
    if (!topic || topic->Kind != Topic::TopicKind::Manifest)
    {
        return;
    }
    try
    {
        manifest.Take(topic->Part, message.Payload);
    }
    catch (const std::invalid_argument&) // it goes whatever it says
    {
        return;
    }
    const SiteTopics topics(topic->Site);
    for (const auto& [id, revision] : manifest.Known())
    {
        RemoveKnown(topics.Device(id));
    }
}

void RetainedRemoval::RemoveKnown(const std::string& topic)
{
    if (targets.try_emplace(topic).second)
    {
        Remove(topic);
    }
}

void RetainedRemoval::Remove(const std::string& topic)
{
    hasRemoved = true;
    underWay.emplace(++lastNumber, topic);
}

void RetainedRemoval::Leave(const std::string& topic, const std::string& reason)
{
    targets[topic].IsLeft = true;
    trouble = trouble.empty() ? topic + ": " + reason : trouble;
}
} // namespace Zent::Discovery::Fleet
