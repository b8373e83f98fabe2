#include "Show/EventText.h"

using Zent::Discovery::Inventory::Conflict;
using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceDifferences;
using Zent::Discovery::Inventory::Event;

namespace Zent::Discovery::Console
{
namespace
{
std::string NameOf(const Device& device)
{
    return device.HostName + " (" + device.MainInterface().IPAddress + ")";
}

std::string TextOf(const Conflict& conflict)
{
    const std::string devices = NameOf(*conflict.First) + " and " + NameOf(*conflict.Second);
    switch (conflict.Kind)
    {
    case Conflict::ConflictKind::MAC:
        return "conflict: two devices speak in turn as " + conflict.Value + ": " + devices;
    case Conflict::ConflictKind::IP:
        return "conflict: " + std::to_string(conflict.Count) + " devices have the address " + conflict.Value + ": " +
               devices;
    default:
        return "conflict: " + std::to_string(conflict.Count) + " devices have the name " + conflict.Value;
    }
}

struct Words
{
    const char* Text; // behind the device's name
    Event::EventKind Kind;
    Style Look;
};

constexpr Words AboutDevices[] = {
    {"appeared", Event::EventKind::Appeared, Style::Appeared},
    {"left", Event::EventKind::Left, Style::Left},
    {"is gone: it does not answer any more", Event::EventKind::Gone, Style::Left},
    {"came back", Event::EventKind::Returned, Style::Appeared},
    {"comes and goes", Event::EventKind::Flapping, Style::Left},
    {"no longer comes and goes", Event::EventKind::Settled, Style::Appeared},
    {"is forgotten: it belongs to another device, or there are too many", Event::EventKind::Forgotten, Style::Faint},
};
} // namespace

std::vector<EventText> EventText::Of(const Event& event)
{
    std::vector<EventText> texts;
    for (const Words& each : AboutDevices)
    {
        if (each.Kind == event.Kind)
        {
            texts.push_back({NameOf(*event.Subject) + " " + each.Text, each.Look});
        }
    }
    for (const DeviceDifferences::Difference& each : event.Changes)
    {
        texts.push_back({NameOf(*event.Subject) + " " + each.ToString(), Style::Changed});
    }
    if (event.Contradiction)
    {
        texts.push_back({TextOf(*event.Contradiction), Style::Left});
    }
    if (event.Kind == Event::EventKind::PortHeld)
    {
        texts.push_back({"another program receives the answers, too: silent devices are not called gone", Style::Left});
    }
    if (event.Kind == Event::EventKind::PortReleased)
    {
        texts.push_back({"no other program receives the answers any more", Style::Appeared});
    }
    if (event.Kind == Event::EventKind::Online)
    {
        texts.push_back({"a network interface takes part again", Style::Appeared});
    }
    return texts;
}
} // namespace Zent::Discovery::Console
