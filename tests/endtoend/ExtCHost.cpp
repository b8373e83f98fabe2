// A host program driven by lines on standard input: the name of a function and its arguments, separated by tabs, where
// NULL stands for a null pointer. Each call answers "= CODE"; GetErrorMessage answers "= TEXT". What the callbacks
// receive is printed when it comes: "signature", "hello" or "bye" and the document. The callback setters take "on" or
// "off". Ends with its input, without any call of its own.

#include "DiscoveryLibrary.h"

#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

namespace
{
using Arguments = std::vector<std::string>;
using Zent::Discovery::DiscoveryFunctions;
using Zent::Discovery::DiscoveryLibrary;

void Print(const std::string& line)
{
    static std::mutex& lock = *new std::mutex(); // callbacks may come until the process has ended
    const std::lock_guard guard(lock);
    std::cout << line << std::endl;
}

void DISCOVERY_EXTC_CALL OnSignature(const char* hostJson)
{
    Print(std::string("signature ") + hostJson);
}

void DISCOVERY_EXTC_CALL OnHello(const char* hostJson)
{
    Print(std::string("hello ") + hostJson);
}

void DISCOVERY_EXTC_CALL OnBye(const char* hostJson)
{
    Print(std::string("bye ") + hostJson);
}

const char* Text(const Arguments& arguments, std::size_t index)
{
    const std::string& text = arguments.at(index);
    return text == "NULL" ? nullptr : text.c_str();
}

using Call = std::function<std::string(const Arguments&)>;

Call NoTexts(int(DISCOVERY_EXTC_CALL* function)())
{
    return [function](const Arguments&) { return std::to_string(function()); };
}

Call OneText(int(DISCOVERY_EXTC_CALL* function)(const char*))
{
    return [function](const Arguments& arguments) { return std::to_string(function(Text(arguments, 1))); };
}

Call TwoTexts(int(DISCOVERY_EXTC_CALL* function)(const char*, const char*))
{
    return [function](const Arguments& arguments) {
        return std::to_string(function(Text(arguments, 1), Text(arguments, 2)));
    };
}

template <class TCallback>
Call Setter(int(DISCOVERY_EXTC_CALL* function)(TCallback), TCallback callback)
{
    return [=](const Arguments& arguments) {
        return std::to_string(function(arguments.at(1) == "on" ? callback : nullptr));
    };
}

std::map<std::string, Call> Calls(const DiscoveryFunctions& library)
{
    return {{"Initialize",
             [&library](const Arguments& arguments) {
                 return std::to_string(library.Initialize(Text(arguments, 1), std::stoi(arguments.at(2))));
             }},
            {"GetErrorMessage",
             [&library](const Arguments& arguments) { return library.TextOf(std::stoi(arguments.at(1))); }},
            {"Terminate", NoTexts(library.Terminate)},
            {"StartServer", NoTexts(library.StartServer)},
            {"StopServer", NoTexts(library.StopServer)},
            {"Discover", NoTexts(library.Discover)},
            {"ChangeClientsIPConfigurations", OneText(library.ChangeClientsIPConfigurations)},
            {"ChangeClientsHostName", TwoTexts(library.ChangeClientsHostName)},
            {"ChangeClientsHostNameWithIP", TwoTexts(library.ChangeClientsHostNameWithIP)},
            {"RefreshClient", OneText(library.RefreshClient)},
            {"ReachClient", OneText(library.ReachClient)},
            {"InitBroadcastProvider", OneText(library.InitBroadcastProvider)},
            {"SetMinCompatibleVersion", OneText(library.SetMinCompatibleVersion)},
            {"SetClientSignatureReceivedEventCallBack",
             Setter(library.SetClientSignatureReceivedEventCallBack, &OnSignature)},
            {"SetHelloMessageReceivedEventCallBack", Setter(library.SetHelloMessageReceivedEventCallBack, &OnHello)},
            {"SetByeMessageReceivedEventCallBack", Setter(library.SetByeMessageReceivedEventCallBack, &OnBye)}};
}

Arguments Split(const std::string& line)
{
    Arguments parts;
    std::istringstream stream(line);
    for (std::string part; std::getline(stream, part, '\t');)
    {
        parts.push_back(part);
    }
    return parts;
}
} // namespace

int main(int argc, char* argv[])
{
    if (argc != 2)
    {
        std::cerr << "usage: extc-host LIBRARY\n";
        return 2;
    }
    const DiscoveryFunctions library = DiscoveryLibrary(argv[1]).Functions();
    const std::map<std::string, Call> calls = Calls(library);
    for (std::string line; std::getline(std::cin, line);)
    {
        const Arguments arguments = Split(line);
        Print("= " + calls.at(arguments.at(0))(arguments));
    }
    return library.Terminate(); // takes its leave as hosts should
}
