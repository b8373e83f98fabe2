#include "PagePublisher.h"

#include "Page/PageServer.h"

#include <utility>

using Zent::Discovery::Page::PageModel;

namespace Zent::Discovery::Agent
{
PagePublisher::PagePublisher(std::string site, Page::PageServer& page, std::unique_ptr<ISitePublisher> world)
    : site(std::move(site))
    , page(page)
    , world(std::move(world))
{
}

void PagePublisher::PublishRecord(const std::string& id, const Fleet::DeviceRecord& record)
{
    page.Update([&](PageModel& model) { model.SetDevice(site, id, record); });
    world->PublishRecord(id, record);
}

void PagePublisher::RemoveRecord(const std::string& id)
{
    page.Update([&](PageModel& model) { model.RemoveDevice(site, id); });
    world->RemoveRecord(id);
}

void PagePublisher::PublishEvent(const Fleet::SiteEvent& event)
{
    page.Update([&](PageModel& model) { model.Take(event); });
    world->PublishEvent(event);
}
} // namespace Zent::Discovery::Agent
