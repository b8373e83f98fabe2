#include "Discovery/ServiceThread.h"

namespace Zent::Discovery
{
namespace
{
thread_local bool isServiceThread = false;
}

ServiceThread::ServiceThread() noexcept
{
    isServiceThread = true;
}

ServiceThread::~ServiceThread()
{
    isServiceThread = false;
}

bool ServiceThread::IsCurrent() noexcept
{
    return isServiceThread;
}
} // namespace Zent::Discovery
