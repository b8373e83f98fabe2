#pragma once

#include "Fleet/Conversation.h"
#include "Fleet/Manifest.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Zent::Discovery::Fleet
{
/// Removes what a broker retains below a topic. A broker may give a subscriber less than it has, and tell nobody: what
/// a manifest names goes whether it has come or not, and the broker is asked anew until nothing comes any more. Brokers
/// break the connection after a refusal: the first removal goes alone, and with the first refusal it is over.
class RetainedRemoval final : public Conversation
{
public:
    /// How long a broker may be silent until there is nothing, and until nothing more comes.
    static constexpr Time AnswerTime{3000};
    static constexpr Time PauseTime{500};

    /// What comes again after being removed so often is somebody's who goes on writing it.
    static constexpr unsigned MaximumAttempts = 3;

    /// root ends with a slash. The known topics go though the broker should not give them.
    explicit RetainedRemoval(std::string root, const std::vector<std::string>& known = {});

    void TakeAnswer(const Answer& answer, Time now) override;
    void TakeMessage(const Message& message, Time now) override;
    std::vector<Step> Advance(Time now) override;
    Time NextTime() const override;

    bool IsOver() const override { return isOver; }

    /// How many topics hold nothing now that did, or were said to.
    std::size_t Removed() const { return targets.size() - Left(); }

    /// How many topics still hold something, those included that were not tried.
    std::size_t Left() const;

    /// Why one of them does: the topic with what the broker or somebody else has against it; empty when none is left.
    const std::string& Trouble() const { return trouble; }

private:
    /// What is known of a topic.
    struct Target
    {
        unsigned Sightings = 0;
        bool IsLeft = false;
    };

    bool IsAboutToTry() const;
    void TakeManifest(const Message& message);
    void RemoveKnown(const std::string& topic);
    void Remove(const std::string& topic);
    void Leave(const std::string& topic, const std::string& reason);

    const std::string root;
    ManifestReader manifest;
    std::map<std::string, Target> targets;       // by topic
    std::map<std::size_t, std::string> underWay; // topics by the numbers of their removals
    std::size_t lastNumber = 0;
    std::size_t sent = 0; // the number of the last one
    std::string trouble;
    bool isTried = false;    // the broker lets them be removed
    bool isAsking = false;   // the broker may still give something
    bool hasCome = false;    // something since it was asked
    bool hasRemoved = false; // something since then
    bool isOver = false;
    Time lastProgress{0};
};
} // namespace Zent::Discovery::Fleet
