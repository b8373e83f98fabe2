#pragma once

#include "Os/IMonitor.h"

namespace Nfx::Os
{
class MonitorW32 final : public IMonitor
{
public:
    void Close(MonitorRecord* monitor) override;
    MonitorRecord* Create() override;
    void Enter(MonitorRecord* monitor) override;
    void Exit(MonitorRecord* monitor) override;
};
} // namespace Nfx::Os
