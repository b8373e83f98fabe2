#pragma once

#include "endtoend/SharedState.h"

namespace Benchmarks
{
/// A program under measurement: it receives signatures and calls back, and does what the bench asks for over a socket.
/// Its arguments are the descriptors of the shared memory and of that socket, "None" or "Standard", the log file and
/// whatever Start needs.
class HostProgram
{
public:
    virtual ~HostProgram() = default;

    /// Serves until the bench says goodbye; the exit status.
    int Run(int argc, char** argv);

protected:
    /// Starts to receive, with Count as the callback.
    virtual void Start(bool logs, const char* logFile, const char* library) = 0;
    virtual void Stop() = 0;

    /// Receives on the main thread until Stop; nothing where Start has begun to receive.
    virtual void Receive() {}

    /// Asks all devices for their signatures.
    virtual void Discover() = 0;

    /// Stops and starts the server again; nothing where that has no meaning.
    virtual void Cycle() {}

    /// What both hosts do with a document.
    static void Count(const char* document);

private:
    void Serve(int commands);
    void TimeDiscover();
    void TimeCycles();
};
} // namespace Benchmarks
