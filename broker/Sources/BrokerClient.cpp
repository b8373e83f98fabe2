#include "BrokerClient.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <stdexcept>

namespace Zent::Discovery::Broker
{
namespace
{
constexpr int LoopMilliseconds = 1000;
constexpr std::chrono::seconds LongestLoop{LoopMilliseconds / 1000 + 1}; // for times that are cut to seconds

/// How long after a standstill messages may be read that had come before.
constexpr std::chrono::seconds ReadingTime{5};

constexpr int AtMostOnce = 0;
constexpr int AtLeastOnce = 1;

/// Starts and ends the library with the program.
struct Library
{
    Library() { mosquitto_lib_init(); }

    ~Library() { mosquitto_lib_cleanup(); }

    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

/// A list of MQTT properties.
class Properties final
{
public:
    Properties() = default;
    Properties(const Properties&) = delete;
    Properties& operator=(const Properties&) = delete;

    ~Properties() { mosquitto_property_free_all(&list); }

    void AddText(int identifier, const std::string& text)
    {
        if (!text.empty())
        {
            mosquitto_property_add_string(&list, identifier, text.c_str());
        }
    }

    void AddBytes(int identifier, const std::string& bytes)
    {
        if (!bytes.empty())
        {
            mosquitto_property_add_binary(&list, identifier, bytes.data(), static_cast<std::uint16_t>(bytes.size()));
        }
    }

    void AddNumber(int identifier, std::uint32_t number) { mosquitto_property_add_int32(&list, identifier, number); }

    const mosquitto_property* Get() const { return list; }

private:
    mosquitto_property* list = nullptr;
};

void AddTo(Properties& properties, const Publication& publication)
{
    properties.AddText(MQTT_PROP_RESPONSE_TOPIC, publication.ResponseTopic);
    properties.AddBytes(MQTT_PROP_CORRELATION_DATA, publication.CorrelationData);
    if (publication.ExpirySeconds)
    {
        properties.AddNumber(MQTT_PROP_MESSAGE_EXPIRY_INTERVAL, *publication.ExpirySeconds);
    }
}

std::string ReasonOf(int code)
{
    return code == MOSQ_ERR_ERRNO && errno == 0 ? "the connection was lost"
           : code == MOSQ_ERR_ERRNO             ? std::strerror(errno) // NOLINT(concurrency-mt-unsafe)
           : code == MOSQ_ERR_EAI               ? "the name is not known"
                                                : mosquitto_strerror(code);
}

bool IsError(int reasonCode)
{
    return reasonCode >= 0x80; // by the protocol
}

/// Since the machine was started, the time that it has slept included.
std::chrono::seconds Uptime()
{
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return std::chrono::seconds(time.tv_sec);
}

} // namespace

BrokerConnection::Client::Client(const BrokerSettings& settings, Tell tell)
    : settings(settings)
    , tell(std::move(tell))
    , handle(
          [&settings, this] {
              static const Library Initialized;
              return mosquitto_new(settings.ClientId.c_str(), true, this);
          }(),
          &mosquitto_destroy)
{
    if (handle == nullptr)
    {
        throw std::runtime_error("no client for the broker: " + ReasonOf(MOSQ_ERR_ERRNO));
    }
    mosquitto_int_option(handle.get(), MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    // Small requests follow each other. Without this the system holds one back until the one before is acknowledged,
    // which the broker's system puts off for 40 ms in the hope of an answer to send along.
    mosquitto_int_option(handle.get(), MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_threaded_set(handle.get(), true);
    mosquitto_log_callback_set(handle.get(), [](mosquitto*, void* self, int level, const char* text) {
        static_cast<Client*>(self)->OnLog(level, text);
    });
    if (!settings.User.empty())
    {
        mosquitto_username_pw_set(handle.get(), settings.User.c_str(),
                                  settings.Password.empty() ? nullptr : settings.Password.c_str());
    }
    PrepareTls();
    PrepareWill();

    using Kind = BrokerNews::NewsKind;
    mosquitto_connect_v5_callback_set(handle.get(),
                                      [](mosquitto*, void* self, int reason, int, const mosquitto_property* said) {
                                          static_cast<Client*>(self)->OnConnect(reason, said);
                                      });
    mosquitto_publish_v5_callback_set(handle.get(),
                                      [](mosquitto*, void* self, int number, int reason, const mosquitto_property*) {
                                          BrokerNews news{IsError(reason) ? Kind::Refused : Kind::Delivered, number,
                                                          IsError(reason) ? mosquitto_reason_string(reason) : ""};
                                          news.Code = static_cast<std::uint8_t>(reason);
                                          static_cast<Client*>(self)->tell(std::move(news));
                                      });
    mosquitto_subscribe_v5_callback_set(
        handle.get(), [](mosquitto*, void* self, int number, int count, const int* granted, const mosquitto_property*) {
            const bool isRefused = count < 1 || IsError(granted[0]);
            BrokerNews news{isRefused ? Kind::Refused : Kind::Subscribed, number,
                            isRefused ? "the subscription is not authorized" : ""};
            news.Code = isRefused ? MQTT_RC_NOT_AUTHORIZED : 0;
            static_cast<Client*>(self)->tell(std::move(news));
        });
    mosquitto_message_v5_callback_set(handle.get(), [](mosquitto*, void* self, const mosquitto_message* message,
                                                       const mosquitto_property* properties) {
        static_cast<Client*>(self)->OnMessage(*message, properties);
    });
}

BrokerConnection::Client::~Client() = default;

void BrokerConnection::Client::PrepareTls()
{
    if (!settings.UsesTls)
    {
        return;
    }
    const auto file = [](const std::string& name) { return name.empty() ? nullptr : name.c_str(); };
    const bool usesSystem = settings.AuthorityFile.empty();
    mosquitto_int_option(handle.get(), MOSQ_OPT_TLS_USE_OS_CERTS, usesSystem ? 1 : 0);
    const int result =
        usesSystem && settings.CertificateFile.empty()
            ? MOSQ_ERR_SUCCESS
            : mosquitto_tls_set(handle.get(), file(settings.AuthorityFile), usesSystem ? "/etc/ssl/certs" : nullptr,
                                file(settings.CertificateFile), file(settings.KeyFile), nullptr);
    if (result != MOSQ_ERR_SUCCESS)
    {
        const std::string wrong = settings.WrongWithFiles();
        throw std::runtime_error(wrong.empty() ? "the files for TLS cannot be used: " + ReasonOf(result) : wrong);
    }
}

void BrokerConnection::Client::PrepareWill()
{
    if (settings.Will)
    {
        mosquitto_will_set(handle.get(), settings.Will->Topic.c_str(), static_cast<int>(settings.Will->Payload.size()),
                           settings.Will->Payload.data(), AtLeastOnce, settings.Will->IsRetained);
    }
}

std::string BrokerConnection::Client::Connect()
{
    Properties properties;
    properties.AddNumber(MQTT_PROP_MAXIMUM_PACKET_SIZE, MaximumPacketBytes);
    const int result =
        mosquitto_connect_bind_v5(handle.get(), settings.Host.c_str(), settings.Port,
                                  static_cast<int>(settings.KeepAlive.count()), nullptr, properties.Get());
    loopBegan = Uptime();
    return result == MOSQ_ERR_SUCCESS ? "" : EndReasonOf(result);
}

std::string BrokerConnection::Client::EndReasonOf(int code) const
{
    return code == MOSQ_ERR_TLS && !complaint.empty() ? "TLS: " + complaint : ReasonOf(code);
}

std::string BrokerConnection::Client::Loop()
{
    NoteStandstill();
    loopBegan = Uptime();
    const int result = mosquitto_loop(handle.get(), LoopMilliseconds, 1);
    return !refusal.empty()               ? refusal
           : result == MOSQ_ERR_SUCCESS   ? ""
           : result == MOSQ_ERR_CONN_LOST ? "the connection was lost"
           : result == MOSQ_ERR_NO_CONN   ? "the connection is closed"
           : result == MOSQ_ERR_KEEPALIVE ? "the broker does not answer"
                                          : EndReasonOf(result);
}

std::optional<int> BrokerConnection::Client::Publish(const Publication& publication)
{
    Properties properties;
    AddTo(properties, publication);
    int number = 0;
    const int result = mosquitto_publish_v5(handle.get(), &number, publication.Topic.c_str(),
                                            static_cast<int>(publication.Payload.size()), publication.Payload.data(),
                                            publication.IsAcknowledged ? AtLeastOnce : AtMostOnce,
                                            publication.IsRetained, properties.Get());
    return result == MOSQ_ERR_SUCCESS ? std::optional(number) : std::nullopt;
}

std::optional<int> BrokerConnection::Client::Subscribe(const std::string& filter)
{
    return SubscribeWith(AtLeastOnce, 0, {filter});
}

std::optional<int> BrokerConnection::Client::Follow(const std::string& filter)
{
    return SubscribeWith(AtLeastOnce, MQTT_SUB_OPT_SEND_RETAIN_NEVER, {filter});
}

std::optional<int> BrokerConnection::Client::Search(const std::string& filter, const std::string& endMark)
{
    return SubscribeWith(AtMostOnce, 0, endMark.empty() ? std::vector{filter} : std::vector{filter, endMark});
}

/// All of the filters in one request, so that the broker has no time to send in between.
std::optional<int> BrokerConnection::Client::SubscribeWith(int quality,
                                                           int options,
                                                           const std::vector<std::string>& filters)
{
    std::vector<char*> texts;
    for (const std::string& filter : filters)
    {
        texts.push_back(const_cast<char*>(filter.c_str())); // the library changes nothing there
    }
    int number = 0;
    const int result = mosquitto_subscribe_multiple(handle.get(), &number, static_cast<int>(texts.size()), texts.data(),
                                                    quality, options | MQTT_SUB_OPT_NO_LOCAL, nullptr);
    return result == MOSQ_ERR_SUCCESS ? std::optional(number) : std::nullopt;
}

void BrokerConnection::Client::Unsubscribe(const std::string& filter)
{
    mosquitto_unsubscribe(handle.get(), nullptr, filter.c_str());
}

void BrokerConnection::Client::SayGoodbye()
{
    mosquitto_disconnect_v5(handle.get(), 0, nullptr);
}

void BrokerConnection::Client::OnLog(int level, const std::string& text)
{
    if (level == MOSQ_LOG_ERR && complaint.empty())
    {
        const std::size_t begin = text.find_first_not_of(' ', text.rfind(':') + 1); // after what tells where it is from
        complaint = begin == std::string::npos ? text : text.substr(begin);
        complaint.resize(complaint.size() - (complaint.ends_with('.') ? 1 : 0));
    }
}

void BrokerConnection::Client::OnConnect(int reason, const mqtt5__property* properties)
{
    if (IsError(reason))
    {
        refusal = reason == MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION ? "the broker does not speak MQTT 5"
                                                                 : mosquitto_reason_string(reason);
        return;
    }
    mosquitto_log_callback_set(handle.get(), nullptr); // all messages would be told there
    isAccepted = true;
    BrokerNews news{BrokerNews::NewsKind::Connected};
    if (std::uint8_t keeps = 1;
        mosquitto_property_read_byte(properties, MQTT_PROP_RETAIN_AVAILABLE, &keeps, false) != nullptr)
    {
        news.KeepsRetained = keeps != 0;
    }
    if (std::uint32_t bytes = 0;
        mosquitto_property_read_int32(properties, MQTT_PROP_MAXIMUM_PACKET_SIZE, &bytes, false) != nullptr)
    {
        news.MaximumPacketBytes = bytes;
    }
    tell(std::move(news));
}

/// Notes when program or machine have stood still. What was sent meanwhile is read now, and the broker has counted its
/// expiry only until it sent it.
void BrokerConnection::Client::NoteStandstill()
{
    const std::chrono::seconds now = Uptime();
    if (now - loopBegan > LongestLoop)
    {
        standstill = now - loopBegan - LongestLoop;
        standstillCounts = now + ReadingTime;
    }
}

std::uint32_t BrokerConnection::Client::LeftOf(std::uint32_t expiry)
{
    NoteStandstill();
    const auto late = static_cast<std::uint32_t>(Uptime() < standstillCounts ? standstill.count() : 0);
    return expiry - std::min(expiry, late);
}

void BrokerConnection::Client::OnMessage(const mosquitto_message& message, const mqtt5__property* properties)
{
    BrokerNews news{BrokerNews::NewsKind::Received};
    news.Message.Topic = message.topic;
    news.Message.Payload.assign(static_cast<const char*>(message.payload),
                                static_cast<std::size_t>(message.payloadlen));
    news.Message.IsRetained = message.retain;
    if (char* text = nullptr;
        mosquitto_property_read_string(properties, MQTT_PROP_RESPONSE_TOPIC, &text, false) != nullptr)
    {
        const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
        news.Message.ResponseTopic = text;
    }
    void* bytes = nullptr;
    std::uint16_t size = 0;
    if (mosquitto_property_read_binary(properties, MQTT_PROP_CORRELATION_DATA, &bytes, &size, false) != nullptr)
    {
        const std::unique_ptr<void, decltype(&std::free)> owner(bytes, &std::free);
        news.Message.CorrelationData.assign(static_cast<const char*>(bytes), size);
    }
    if (std::uint32_t seconds = 0;
        mosquitto_property_read_int32(properties, MQTT_PROP_MESSAGE_EXPIRY_INTERVAL, &seconds, false) != nullptr)
    {
        news.Message.ExpirySeconds = LeftOf(seconds);
    }
    tell(std::move(news));
}
} // namespace Zent::Discovery::Broker
