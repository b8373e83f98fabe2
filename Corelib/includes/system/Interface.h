#pragma once

namespace Nfx::System
{
/// Root of the interface classes: whoever holds an implementation through an interface can delete it.
class Interface
{
public:
    virtual ~Interface() = default;

protected:
    Interface() = default;
    Interface(const Interface&) = default;
    Interface& operator=(const Interface&) = default;
};
} // namespace Nfx::System
