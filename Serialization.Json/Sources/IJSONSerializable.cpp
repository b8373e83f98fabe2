#include "Json/IJSONSerializable.h"

#include "Json/JSONStringer.h"

namespace Zent::Utils::Json
{
Nfx::System::String IJSONSerializable::ToJson() const
{
    JSONStringer stringer;
    Serialize(stringer);
    return stringer.Detach();
}
} // namespace Zent::Utils::Json
