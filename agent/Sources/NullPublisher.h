#pragma once

#include "ISitePublisher.h"

namespace Zent::Discovery::Agent
{
/// For an agent without a broker, which serves its own subnet.
class NullPublisher : public ISitePublisher
{
public:
    void PublishRecord(const std::string& /*id*/, const Fleet::DeviceRecord& /*record*/) override {}

    void RemoveRecord(const std::string& /*id*/) override {}

    void PublishEvent(const Fleet::SiteEvent& /*event*/) override {}

    void Reply(const Fleet::CommandMessage& /*message*/, const Fleet::Verdict& /*verdict*/) override {}

    bool HasRecord(const std::string& /*id*/) const override { return false; }

    void BeReady() override {}

    void Advance(Inventory::Time /*now*/) override {}

    Inventory::Time NextTime(Inventory::Time /*now*/) const override { return Inventory::Time::max(); }

    PublisherStatus Status() const override { return {false, 0, "no broker is set"}; }

    void Close() override {}
};
} // namespace Zent::Discovery::Agent
