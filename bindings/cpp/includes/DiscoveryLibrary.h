#pragma once

#include "DiscoverySession.h"

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

#if defined(_WIN32)
#include <system_error>
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace Zent::Discovery
{
/// The library loaded at run time, for a session of a program that is not linked to it. It is never unloaded: a thread
/// that the library could not stop would lose the code it runs.
class DiscoveryLibrary final
{
public:
    /// path is UTF-8. A name without a folder means the current one, not those that the system's loader searches.
    /// @throws std::runtime_error with the system's reason when the library cannot be loaded or lacks a function.
    explicit DiscoveryLibrary(const std::string& path)
        : path(path)
        , handle(Load(path))
    {
        Find(functions.Initialize, "Initialize");
        Find(functions.Terminate, "Terminate");
        Find(functions.StartServer, "StartServer");
        Find(functions.StopServer, "StopServer");
        Find(functions.GetErrorMessage, "GetErrorMessage");
        Find(functions.Discover, "Discover");
        Find(functions.ChangeClientsIPConfigurations, "ChangeClientsIPConfigurations");
        Find(functions.ChangeClientsHostName, "ChangeClientsHostName");
        Find(functions.ChangeClientsHostNameWithIP, "ChangeClientsHostNameWithIP");
        Find(functions.RefreshClient, "RefreshClient");
        Find(functions.ReachClient, "ReachClient");
        Find(functions.SetClientSignatureReceivedEventCallBack, "SetClientSignatureReceivedEventCallBack");
        Find(functions.SetHelloMessageReceivedEventCallBack, "SetHelloMessageReceivedEventCallBack");
        Find(functions.SetByeMessageReceivedEventCallBack, "SetByeMessageReceivedEventCallBack");
        Find(functions.InitBroadcastProvider, "InitBroadcastProvider");
        Find(functions.SetMinCompatibleVersion, "SetMinCompatibleVersion");
    }

    /// For DiscoverySession; valid until the process ends.
    const DiscoveryFunctions& Functions() const noexcept { return functions; }

private:
    template <class TResult, class... TArguments>
    void Find(TResult(DISCOVERY_EXTC_CALL*& function)(TArguments...), const char* name) const
    {
        // Every argument takes whole words of the stack; all of these are exactly one.
        constexpr std::size_t ArgumentBytes = (std::size_t{0} + ... + sizeof(TArguments));
        const std::string exportName = ExportName(name, ArgumentBytes);
        void* const address = FindExport(exportName);
        if (address == nullptr)
        {
            throw std::runtime_error("the library " + path + " lacks the function " + exportName);
        }
        function = reinterpret_cast<TResult(DISCOVERY_EXTC_CALL*)(TArguments...)>(address);
    }

#if defined(_WIN32)
    static void* Load(const std::string& path)
    {
        std::wstring wide(path.size(), L'\0'); // at least as long as it will be
        wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()),
                                                                 wide.data(), static_cast<int>(wide.size()))));
        void* const handle = LoadLibraryW(std::filesystem::absolute(wide).c_str());
        if (handle == nullptr)
        {
            const std::error_code reason(static_cast<int>(GetLastError()), std::system_category());
            throw std::runtime_error("cannot load the library: " + path + ": " + reason.message());
        }
        return handle;
    }

    static std::string ExportName(const char* name, std::size_t argumentBytes)
    {
        constexpr bool IsDecorated = sizeof(void*) == 4;
        return IsDecorated ? "_" + std::string(name) + "@" + std::to_string(argumentBytes) : name;
    }

    void* FindExport(const std::string& name) const
    {
        return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name.c_str()));
    }
#else
    static void* Load(const std::string& path)
    {
        void* const handle = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr)
        {
            // NOLINTNEXTLINE(concurrency-mt-unsafe): the text is the calling thread's own
            throw std::runtime_error("cannot load the library: " + std::string(dlerror()));
        }
        return handle;
    }

    static std::string ExportName(const char* name, std::size_t /*argumentBytes*/)
    {
        return name;
    }

    void* FindExport(const std::string& name) const
    {
        return dlsym(handle, name.c_str());
    }
#endif

    const std::string path;
    void* const handle;
    DiscoveryFunctions functions{};
};
} // namespace Zent::Discovery
