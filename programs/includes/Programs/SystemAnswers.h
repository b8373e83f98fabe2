#pragma once

#include "Inventory/Network.h"
#include "Inventory/Session.h"

#include <vector>

namespace Zent::Discovery::Programs
{
/// Tells a session of the inventory what only this machine's system knows. One thread at a time.
class SystemAnswers final
{
public:
    /// Answers a wish; false for one that the library is to be asked for.
    static bool Answer(Inventory::Session& session, const Inventory::Wish& wish);

    /// Of the interfaces that usually take part; none when the system does not tell.
    static std::vector<Inventory::Network> Networks();

    /// Tells whether another program receives what devices send, once it is time to look.
    void TellOfPort(Inventory::Session& session, Inventory::Time now);

    /// The same, and whether this machine has lost the networks that it had. For hosts of which it is not known which
    /// interfaces they use: one that never had a network uses the loopback interface.
    void TellOfPortAndNetworks(Inventory::Session& session, Inventory::Time now);

    /// When it is.
    Inventory::Time NextLook() const { return nextLook; }

private:
    Inventory::Time nextLook{0};
    bool hadNetworks = false;
};
} // namespace Zent::Discovery::Programs
