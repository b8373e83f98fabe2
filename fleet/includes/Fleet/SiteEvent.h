#pragma once

#include "Fleet/UtcTime.h"

#include <string>
#include <string_view>

namespace Zent::Discovery::Fleet
{
/// Something that has happened at a site, for those who listen at that moment: a CloudEvent.
struct SiteEvent
{
    std::string Site;
    std::string Id;     // never given twice at a site
    std::string Kind;   // appeared, changed, left, gone, returned or conflict
    std::string Device; // its id; empty when the event is about none that has one
    WallTime When;
    std::string Details; // a JSON object

    /// @throws std::invalid_argument with the reason when the bytes are none. Whatever a broker gives may come.
    static SiteEvent Parse(std::string_view bytes);

    /// {"specversion":"1.0","id":"..","source":"/discovery/v1/<site>","type":"discovery.v1.appeared",
    /// "subject":"02-00-00-00-00-01","time":"..","datacontenttype":"application/json","data":{..}}
    std::string ToJson() const;
};
} // namespace Zent::Discovery::Fleet
