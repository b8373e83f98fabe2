#pragma once

#include "ISitePublisher.h"

#include <memory>
#include <string>

namespace Zent::Discovery::Page
{
class PageServer;
}

namespace Zent::Discovery::Agent
{
/// Shows on the site's page, too, what another publisher tells the world. One thread.
class PagePublisher final : public ISitePublisher
{
public:
    /// The page must outlive the object.
    PagePublisher(std::string site, Page::PageServer& page, std::unique_ptr<ISitePublisher> world);

    void PublishRecord(const std::string& id, const Fleet::DeviceRecord& record) override;
    void RemoveRecord(const std::string& id) override;
    void PublishEvent(const Fleet::SiteEvent& event) override;

    void Reply(const Fleet::CommandMessage& message, const Fleet::Verdict& verdict) override
    {
        world->Reply(message, verdict);
    }

    bool HasRecord(const std::string& id) const override { return world->HasRecord(id); }

    void BeReady() override { world->BeReady(); }

    void Advance(Inventory::Time now) override { world->Advance(now); }

    Inventory::Time NextTime(Inventory::Time now) const override { return world->NextTime(now); }

    PublisherStatus Status() const override { return world->Status(); }

    void Close() override { world->Close(); }

private:
    const std::string site;
    Page::PageServer& page;
    const std::unique_ptr<ISitePublisher> world;
};
} // namespace Zent::Discovery::Agent
