#pragma once

#include "Discovery/MACAddress.h"
#include "Discovery/Message/ByeMessage.h"
#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Discovery/Message/HelloMessage.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "Server/HostEvents.h"
#include "Server/ServerAction.h"
#include "system/Net/IPAddress.h"
#include "system/String.h"

namespace Zent::Discovery::Server
{
class SendSendYourSignatureAction;
class SendAllSendYourSignatureAction;
class SendChangeYourIPConfigAction;
class SendChangeYourHostNameAction;
class NotifyAction;

/// Has an operation for each class of actions.
class IServerActionHandler
{
public:
    virtual void Handle(const SendSendYourSignatureAction& action) = 0;
    virtual void Handle(const SendAllSendYourSignatureAction& action) = 0;
    virtual void Handle(const SendChangeYourIPConfigAction& action) = 0;
    virtual void Handle(const SendChangeYourHostNameAction& action) = 0;
    virtual void Handle(const NotifyAction& action) = 0;

    /// For actions of classes that are not among the above.
    virtual void HandleOther(const ServerAction& action) = 0;

protected:
    ~IServerActionHandler() = default;
};

/// An action for one device: the one that owns a MAC address, or the one at an IP address.
class DeviceAction : public ServerAction
{
public:
    /// The broadcast address stands for a request to the owner of the MAC address, whoever gave it.
    bool TargetsMACAddress() const { return ipAddress == Nfx::System::Net::IPAddress::Broadcast(); }

    const MACAddress& TargetedMACAddress() const noexcept { return macAddress; }

    const Nfx::System::Net::IPAddress& TargetedIPAddress() const noexcept { return ipAddress; }

protected:
    /// The IP address becomes the broadcast address: whoever owns the MAC address is to hear of it.
    DeviceAction(const ServerActionType& type, const MACAddress& macAddress)
        : ServerAction(type)
        , macAddress(macAddress)
        , ipAddress(Nfx::System::Net::IPAddress::Broadcast())
    {
    }

    /// The MAC address stays empty, which no device owns.
    DeviceAction(const ServerActionType& type, const Nfx::System::Net::IPAddress& ipAddress)
        : ServerAction(type)
        , ipAddress(ipAddress)
    {
    }

private:
    const MACAddress macAddress;
    const Nfx::System::Net::IPAddress ipAddress;
};

/// Asks one device for its signature.
class SendSendYourSignatureAction final : public DeviceAction
{
public:
    explicit SendSendYourSignatureAction(const MACAddress& macAddress)
        : DeviceAction(ServerActionType::SendSendYourSignatureMessage, macAddress)
    {
    }

    explicit SendSendYourSignatureAction(const Nfx::System::Net::IPAddress& ipAddress)
        : DeviceAction(ServerActionType::SendSendYourSignatureMessage, ipAddress)
    {
    }

    void HandleBy(IServerActionHandler& handler) const override { handler.Handle(*this); }
};

/// Asks every device for its signature.
class SendAllSendYourSignatureAction final : public ServerAction
{
public:
    SendAllSendYourSignatureAction() noexcept
        : ServerAction(ServerActionType::SendAllSendYourSignatureMessage)
    {
    }

    void HandleBy(IServerActionHandler& handler) const override { handler.Handle(*this); }
};

/// Gives network interfaces new settings; each device picks those that carry one of its MAC addresses.
class SendChangeYourIPConfigAction final : public ServerAction
{
public:
    using NICConfigList = ChangeYourIPConfigMessage::NICConfigList;

    /// The list must not change afterwards.
    explicit SendChangeYourIPConfigAction(const Nfx::System::SmartPointer<NICConfigList>& nicConfigs)
        : ServerAction(ServerActionType::SendChangeYourIPConfigMessage)
        , nicConfigs(nicConfigs)
    {
    }

    void HandleBy(IServerActionHandler& handler) const override { handler.Handle(*this); }

    const Nfx::System::SmartPointer<NICConfigList>& NICConfigs() const noexcept { return nicConfigs; }

private:
    const Nfx::System::SmartPointer<NICConfigList> nicConfigs;
};

/// Gives one device a new host name.
class SendChangeYourHostNameAction final : public DeviceAction
{
public:
    SendChangeYourHostNameAction(const Nfx::System::String& newHostName, const MACAddress& macAddress)
        : DeviceAction(ServerActionType::SendChangeYourHostNameMessage, macAddress)
        , newHostName(newHostName)
    {
    }

    SendChangeYourHostNameAction(const Nfx::System::String& newHostName, const Nfx::System::Net::IPAddress& ipAddress)
        : DeviceAction(ServerActionType::SendChangeYourHostNameMessage, ipAddress)
        , newHostName(newHostName)
    {
    }

    void HandleBy(IServerActionHandler& handler) const override { handler.Handle(*this); }

    const Nfx::System::String& NewHostName() const noexcept { return newHostName; }

private:
    const Nfx::System::String newHostName;
};

/// Tells the host application what a device has sent.
class NotifyAction : public ServerAction
{
public:
    void HandleBy(IServerActionHandler& handler) const override { handler.Handle(*this); }

    const HostEventKind& Kind() const noexcept { return kind; }

    const Nfx::System::SmartPointer<SignatureBroadcastMessage>& Message() const noexcept { return message; }

protected:
    NotifyAction(const ServerActionType& type,
                 const HostEventKind& kind,
                 const Nfx::System::SmartPointer<SignatureBroadcastMessage>& message)
        : ServerAction(type)
        , kind(kind)
        , message(message)
    {
    }

private:
    const HostEventKind kind;
    const Nfx::System::SmartPointer<SignatureBroadcastMessage> message;
};

/// A device has sent its signature.
class NotifyClientSignatureReceivedAction final : public NotifyAction
{
public:
    explicit NotifyClientSignatureReceivedAction(const Nfx::System::SmartPointer<SignatureBroadcastMessage>& message)
        : NotifyAction(ServerActionType::NotifyClientSignatureReceived, HostEventKind::ClientSignature, message)
    {
    }
};

/// A device has come.
class NotifyHelloMessageReceivedAction final : public NotifyAction
{
public:
    explicit NotifyHelloMessageReceivedAction(const Nfx::System::SmartPointer<HelloMessage>& message)
        : NotifyAction(ServerActionType::NotifyHelloMessageReceived, HostEventKind::Hello, message)
    {
    }
};

/// A device leaves.
class NotifyByeMessageReceivedAction final : public NotifyAction
{
public:
    explicit NotifyByeMessageReceivedAction(const Nfx::System::SmartPointer<ByeMessage>& message)
        : NotifyAction(ServerActionType::NotifyByeMessageReceived, HostEventKind::Bye, message)
    {
    }
};
} // namespace Zent::Discovery::Server
