#include "DiscoveryLibrary.h"
#include "endtoend/HostProgram.h"

#include <cstdio>
#include <cstdlib>

namespace Benchmarks
{
namespace
{
/// A host application of the library.
class LibraryHost final : public HostProgram
{
protected:
    void Start(bool logs, const char* logFile, const char* library) override
    {
        functions = Zent::Discovery::DiscoveryLibrary(library).Functions();
        Require(functions.Initialize(logFile, logs ? DiscoveryLogStandard : DiscoveryLogNone));
        Require(functions.SetClientSignatureReceivedEventCallBack(&Count));
        Require(functions.StartServer());
    }

    void Stop() override { Require(functions.Terminate()); }

    void Discover() override { Require(functions.Discover()); }

    void Cycle() override
    {
        Require(functions.StopServer());
        Require(functions.StartServer());
    }

private:
    static void Require(int code)
    {
        if (code != 0)
        {
            std::fprintf(stderr, "the library refused: code 0x%08X\n", static_cast<unsigned>(code));
            std::exit(EXIT_FAILURE);
        }
    }

    Zent::Discovery::DiscoveryFunctions functions{};
};
} // namespace
} // namespace Benchmarks

int main(int argc, char** argv)
{
    return Benchmarks::LibraryHost().Run(argc, argv);
}
