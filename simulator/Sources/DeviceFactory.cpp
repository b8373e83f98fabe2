#include "DeviceFactory.h"

#include <array>
#include <random>
#include <string>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::Net::IPAddress;

namespace Zent::Discovery::Simulator
{
namespace
{
struct Model
{
    const char* Name; // what host names begin with
    const char* Type;
    const char* Family;
};

constexpr Model Models[] = {{"press", "Panel", "P300"},
                            {"mixer", "Panel", "P500"},
                            {"oven", "Controller", "C20"},
                            {"conveyor", "Drive", "D7"},
                            {"gate", "Gateway", "G1"}};

struct Software
{
    const char* Type;
    const char* Name;
};

constexpr Software Programs[] = {{"Runtime", "Control Runtime"},
                                 {"Visualization", "Operator View"},
                                 {"Recorder", "Trend Recorder"},
                                 {"Service", "Remote Service"}};

/// Random numbers that are the same on every platform, which the standard distributions are not.
class Random final
{
public:
    explicit Random(std::uint64_t seed)
        : engine(seed)
    {
    }

    /// 0 to limit - 1.
    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(engine() % limit); }

    template <class T, std::size_t Size>
    const T& OneOf(const T (&values)[Size])
    {
        return values[Below(Size)];
    }

private:
    std::mt19937_64 engine;
};

String Text(const std::string& text)
{
    return String(std::string_view(text));
}

std::string Digits(std::size_t number, std::size_t count)
{
    const std::string text = std::to_string(number);
    return std::string(text.size() < count ? count - text.size() : 0, '0') + text;
}

SmartPointer<NICConfig> MakeInterface(std::uint32_t maker, std::size_t device, std::uint8_t number)
{
    SmartPointer<NICConfig> nic(new NICConfig());
    nic->FriendlyName = Text("eth" + std::to_string(number));
    // The first byte says that no manufacturer has assigned the address.
    nic->MACAddress = MACAddress({0x02, static_cast<std::uint8_t>(maker >> 8), static_cast<std::uint8_t>(maker), number,
                                  static_cast<std::uint8_t>(device >> 8), static_cast<std::uint8_t>(device)});
    nic->MTU = "1500";
    return nic;
}

SmartPointer<DiscoveryHostProduct> MakeProduct(Random& random, const Software& software)
{
    SmartPointer<DiscoveryHostProduct> product(new DiscoveryHostProduct());
    product->ProductType = software.Type;
    product->ProductName = software.Name;
    product->ProductSerialNumber = Text(Digits(random.Below(1000000), 6));
    product->ProductVersion = Text(std::to_string(1 + random.Below(4)) + "." + std::to_string(random.Below(10)));
    return product;
}
} // namespace

DeviceFactory::DeviceFactory(std::uint64_t seed)
    : seed(seed)
{
}

SmartPointer<DiscoveryHost> DeviceFactory::Create(std::size_t number,
                                                  const IPAddress& address,
                                                  const IPAddress& subNetMask) const
{
    const std::uint32_t maker = Random(seed).Below(0x10000);
    Random random(seed ^ (number + 1) * 0x9E3779B97F4A7C15u);
    const Model& model = random.OneOf(Models);

    SmartPointer<DiscoveryHost> host(new DiscoveryHost());
    host->HostName = Text(std::string(model.Name) + "-" + Digits(number + 1, 2));
    host->IsHostNameReadOnly = false;
    host->DeviceType = model.Type;
    host->DeviceFamily = model.Family;
    host->SerialNumber = Text(Digits(random.Below(100000000), 8));

    SmartPointer<NICConfig> main = MakeInterface(maker, number, 0);
    main->IPAddress = address;
    main->SubNetMask = subNetMask;
    host->NICs.Add(main);
    if (random.Below(2) == 0)
    {
        SmartPointer<NICConfig> second = MakeInterface(maker, number, 1);
        second->IPAddress = IPAddress::Parse(
            Text("169.254." + std::to_string(1 + random.Below(254)) + "." + std::to_string(1 + random.Below(254))));
        second->SubNetMask = IPAddress::Parse("255.255.0.0");
        host->NICs.Add(second);
    }

    host->Products.Add(MakeProduct(random, Programs[0]));
    if (random.Below(2) == 0)
    {
        host->Products.Add(MakeProduct(random, Programs[1 + random.Below(3)]));
    }
    host->FileTransferInfos = new FileTransferInfos();
    host->FileTransferInfos->Add("Protocol", "SFTP");
    host->FileTransferInfos->Add("Port", "22");
    return host;
}
} // namespace Zent::Discovery::Simulator
