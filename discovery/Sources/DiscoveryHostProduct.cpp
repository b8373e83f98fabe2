#include "Discovery/DiscoveryHostProduct.h"

#include "Json/JSONObject.h"
#include "Json/JSONStringer.h"

using Nfx::System::String;
using Zent::Utils::Json::JSONKey;
using Zent::Utils::Json::JSONObject;
using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery
{
namespace
{
constexpr JSONKey ProductTypeKey("ProductType");
constexpr JSONKey ProductSerialNumberKey("ProductSerialNumber");
constexpr JSONKey ProductVersionKey("ProductVersion");
constexpr JSONKey ProductNameKey("ProductName");
} // namespace

void DiscoveryHostProduct::Serialize(JSONStringer& stringer) const
{
    stringer.Object();
    stringer.Key(ProductTypeKey);
    stringer.Value(ProductType);
    stringer.Key(ProductSerialNumberKey);
    stringer.Value(ProductSerialNumber);
    stringer.Key(ProductVersionKey);
    stringer.Value(ProductVersion);
    stringer.Key(ProductNameKey);
    stringer.Value(ProductName);
    stringer.EndObject();
}

String DiscoveryHostProduct::ToJson() const
{
    return IJSONSerializable::ToJson();
}

void DiscoveryHostProduct::Deserialize(const String& json)
{
    ReadFrom(JSONObject(json));
}

void DiscoveryHostProduct::ReadFrom(const JSONObject& json)
{
    ProductType = json.GetString(ProductTypeKey);
    ProductSerialNumber = json.GetString(ProductSerialNumberKey);
    ProductVersion = json.GetString(ProductVersionKey);
    ProductName = json.GetString(ProductNameKey);
}
} // namespace Zent::Discovery
