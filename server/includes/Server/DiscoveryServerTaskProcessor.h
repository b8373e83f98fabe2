#pragma once

#include "Server/DiscoveryTaskProcessor.h"
#include "Server/HostRegistrations.h"

namespace Zent::Discovery::Server
{
/// The server's one thread that sends requests and notifies the host application. Its events are raised on that
/// thread: a slow handler delays all that is queued behind it.
class DiscoveryServerTaskProcessor final : public DiscoveryTaskProcessor
{
public:
    explicit DiscoveryServerTaskProcessor(const Nfx::System::SmartPointer<IDiscoverySocket>& socket);

    void Stop() override;

    Nfx::System::Event<ClientSignatureReceivedEventArgs>& ClientSignatureReceived();
    Nfx::System::Event<HelloMessageReceivedEventArgs>& HelloMessageReceived();
    Nfx::System::Event<ByeMessageReceivedEventArgs>& ByeMessageReceived();

    /// A copy of what the host application has installed here.
    HostRegistrations Registrations() const;

    /// Adds the handlers, and the provider unless it is null.
    void Install(const HostRegistrations& registrations);

    /// Removes all handlers of the events for the host application. Needs no memory.
    void ClearHandlers();

protected:
    void ProcessTask(const ServerActionArgs& task) override;

private:
    template <class TAction, class TEventArgs>
    void Notify(const ServerAction& action, const char* what, Nfx::System::Event<TEventArgs>& event);

    void SendSendYourSignature(const ServerAction& action);
    void SendAllSendYourSignature();
    void SendChangeYourIPConfig(const ServerAction& action);
    void SendChangeYourHostName(const ServerAction& action);

    Nfx::System::Event<ClientSignatureReceivedEventArgs> clientSignatureReceived;
    Nfx::System::Event<HelloMessageReceivedEventArgs> helloMessageReceived;
    Nfx::System::Event<ByeMessageReceivedEventArgs> byeMessageReceived;
};
} // namespace Zent::Discovery::Server
