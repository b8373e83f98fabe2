#pragma once

namespace Zent::Discovery
{
/// Marks the calling thread as one of the discovery service's own from construction to the end of the scope.
/// What waits for those threads asks IsCurrent first: a thread that waits for itself waits for ever.
class ServiceThread final
{
public:
    ServiceThread() noexcept;
    ~ServiceThread();
    ServiceThread(const ServiceThread&) = delete;
    ServiceThread& operator=(const ServiceThread&) = delete;

    static bool IsCurrent() noexcept;
};
} // namespace Zent::Discovery
