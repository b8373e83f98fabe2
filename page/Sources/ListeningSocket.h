#pragma once

#include "InternetAddress.h"

#include <optional>

namespace Zent::Discovery::Page
{
/// Waits for viewers. One thread.
class ListeningSocket final
{
public:
    struct Viewer
    {
        int Socket; // whoever takes it closes it
        InternetAddress Address;
    };

    /// @throws std::runtime_error that names the address and the reason when it cannot be had.
    explicit ListeningSocket(const InternetAddress& address);
    ~ListeningSocket();

    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    int Descriptor() const { return descriptor; }

    /// Nothing when nobody waits, or the system has nothing left to serve them with: then isExhausted is set.
    std::optional<Viewer> Accept(bool& isExhausted) const;

private:
    const int descriptor;
};
} // namespace Zent::Discovery::Page
