#pragma once

#include "Server/DiscoveryTaskProcessor.h"
#include "Server/HostEvents.h"
#include "Server/ServerActions.h"

namespace Zent::Discovery::Server
{
/// The server's one thread that sends requests and notifies the host application. Its events are raised on that
/// thread: a slow handler delays all that is queued behind it.
class DiscoveryServerTaskProcessor final : public DiscoveryTaskProcessor, private IServerActionHandler
{
public:
    explicit DiscoveryServerTaskProcessor(const Nfx::System::SmartPointer<IDiscoverySocket>& socket);

    /// Ends the thread after the task in hand, with its lines in the log.
    void Stop() override;

    /// Raised for each message of this kind, after a line in the log.
    Nfx::System::Event<HostEventArgs>& Received(const HostEventKind& kind);

    /// A copy of what the host application has installed here.
    HostRegistrations Registrations() const;

    /// Adds the handlers, and the provider unless it is null.
    void Install(const HostRegistrations& registrations);

    /// Removes all handlers of the events for the host application.
    void ClearHandlers();

protected:
    void ProcessTask(const ServerActionArgs& task) override;

private:
    // On the processor's thread.

    void Handle(const SendSendYourSignatureAction& action) override;
    void Handle(const SendAllSendYourSignatureAction& action) override;
    void Handle(const SendChangeYourIPConfigAction& action) override;
    void Handle(const SendChangeYourHostNameAction& action) override;
    void Handle(const NotifyAction& action) override;
    void HandleOther(const ServerAction& action) override;

    void SendToDevice(const DeviceAction& action, const DiscoveryMessage& message, const char* end);

    ForEachKind<Nfx::System::Event<HostEventArgs>> received;
};
} // namespace Zent::Discovery::Server
