#include "Inbox.h"

#include <utility>

namespace Zent::Discovery::Simulator
{
bool Inbox::Push(Entry entry)
{
    const Programs::Lock guard(lock);
    if (entries.size() >= MaximumCount)
    {
        return false;
    }
    entries.push_back(std::move(entry));
    changed.notify_one();
    return true;
}

std::optional<Inbox::Entry> Inbox::Take(const std::optional<Time>& until)
{
    const Programs::Lock guard(lock);
    while (!isClosed && entries.empty())
    {
        if (!until)
        {
            changed.wait(lock);
        }
        else if (changed.wait_until(lock, *until) == std::cv_status::timeout)
        {
            break;
        }
    }
    if (isClosed || entries.empty())
    {
        return std::nullopt;
    }
    Entry entry = std::move(entries.front());
    entries.pop_front();
    return entry;
}

void Inbox::Close()
{
    const Programs::Lock guard(lock);
    isClosed = true;
    changed.notify_all();
}

bool Inbox::IsClosed() const
{
    const Programs::Lock guard(lock);
    return isClosed;
}
} // namespace Zent::Discovery::Simulator
