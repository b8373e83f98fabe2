// A host program driven by lines on standard input: the name of a function and its arguments, separated by tabs. Each
// call answers "= CODE"; GetErrorMessage answers "= TEXT". Initialize sets the callbacks, too. What they receive is
// printed when it comes: "signature", "hello" or "bye" and the document. Ends with its input.

#include "support/Server.h"

#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{
using Arguments = std::vector<std::string>;
using Call = std::function<std::string(const Arguments&)>;
using Tests::Server;

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

std::string Initialize(const Arguments& arguments)
{
    int code = Server().Initialize(arguments.at(1).c_str(), std::stoi(arguments.at(2)));
    code = code != 0 ? code : Server().SetClientSignatureReceivedEventCallBack(&OnSignature);
    code = code != 0 ? code : Server().SetHelloMessageReceivedEventCallBack(&OnHello);
    return std::to_string(code != 0 ? code : Server().SetByeMessageReceivedEventCallBack(&OnBye));
}

/// A function that takes texts alone, if anything.
template <class... TTexts>
Call Function(int(DISCOVERY_EXTC_CALL* function)(TTexts...))
{
    return [function](const Arguments& arguments) {
        return [&]<std::size_t... Index>(std::index_sequence<Index...>)
        {
            return std::to_string(function(arguments.at(Index + 1).c_str()...));
        }
        (std::index_sequence_for<TTexts...>());
    };
}

std::map<std::string, Call> Calls()
{
    return {{"Initialize", &Initialize},
            {"GetErrorMessage", [](const Arguments& arguments) { return Server().TextOf(std::stoi(arguments.at(1))); }},
            {"Terminate", Function(Server().Terminate)},
            {"StartServer", Function(Server().StartServer)},
            {"StopServer", Function(Server().StopServer)},
            {"Discover", Function(Server().Discover)},
            {"ChangeClientsIPConfigurations", Function(Server().ChangeClientsIPConfigurations)},
            {"ChangeClientsHostName", Function(Server().ChangeClientsHostName)},
            {"ChangeClientsHostNameWithIP", Function(Server().ChangeClientsHostNameWithIP)},
            {"RefreshClient", Function(Server().RefreshClient)},
            {"ReachClient", Function(Server().ReachClient)},
            {"InitBroadcastProvider", Function(Server().InitBroadcastProvider)},
            {"SetMinCompatibleVersion", Function(Server().SetMinCompatibleVersion)}};
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

int main()
{
    const std::map<std::string, Call> calls = Calls();
    for (std::string line; std::getline(std::cin, line);)
    {
        const Arguments arguments = Split(line);
        Print("= " + calls.at(arguments.at(0))(arguments));
    }
    return Server().Terminate(); // takes its leave as hosts should
}
