#include "HttpDaemon.h"

#include "AnswerStream.h"
#include "HttpText.h"
#include "Page/PageServer.h"
#include "SharedModel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <gnutls/gnutls.h>
#include <gnutls/x509.h>
#include <microhttpd.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Zent::Discovery::Page
{
namespace
{
/// While the system has no descriptors left.
constexpr std::chrono::milliseconds AcceptPause{200};

/// No ciphers of the last century, and none without forward secrecy.
constexpr const char* TlsPriorities = "SECURE128:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2:-RSA";

HttpDaemon::Time Now()
{
    return std::chrono::steady_clock::now();
}

RequestDesk::Rules RulesOf(const PageSettings& settings, const PageSecrets& secrets, std::uint16_t port)
{
    RequestDesk::Rules rules;
    for (const std::string& name : settings.Names)
    {
        rules.Names.push_back(HttpText::HostOf(name).value_or(""));
    }
    rules.IsOpen = settings.AuthorityFile.empty() && settings.TokenFile.empty();
    rules.Token = settings.TokenFile.empty() ? std::nullopt : std::optional(secrets.Token);
    rules.CookieName = "__Host-discovery-" + std::to_string(port); // cookies are the same for all ports of a machine
    return rules;
}

/// By a name that requests may use: an address that stands for all of the machine's is none.
std::string UrlOf(const PageSettings& settings, const InternetAddress& address)
{
    const bool isAny = address.Text() == "0.0.0.0" || address.Text() == "::";
    const std::string text = !isAny ? address.Text() : settings.Names.empty() ? "localhost" : settings.Names.front();
    const std::string host = text.find(':') == std::string::npos ? text : "[" + text + "]";
    return (settings.CertificateFile.empty() ? "http://" : "https://") + host + ":" + std::to_string(address.Port()) +
           "/";
}

std::string ValueOf(MHD_Connection& connection, MHD_ValueKind kind, const char* name)
{
    const char* const value = MHD_lookup_connection_value(&connection, kind, name);
    return value == nullptr ? "" : value;
}

std::optional<std::string> PossibleValueOf(MHD_Connection& connection, MHD_ValueKind kind, const char* name)
{
    const char* const value = MHD_lookup_connection_value(&connection, kind, name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::vector<std::string> HostsOf(MHD_Connection& connection)
{
    std::vector<std::string> hosts;
    const auto take = [](void* all, MHD_ValueKind, const char* name, const char* value) {
        std::string lower(name);
        std::ranges::transform(lower, lower.begin(), [](char each) { return static_cast<char>(each | ' '); });
        if (lower == "host")
        {
            static_cast<std::vector<std::string>*>(all)->emplace_back(value == nullptr ? "" : value);
        }
        return MHD_YES;
    };
    MHD_get_connection_values(&connection, MHD_HEADER_KIND, take, &hosts);
    return hosts;
}
} // namespace

struct HttpDaemon::Connection
{
    int Socket;
    InternetAddress Local;
    InternetAddress Viewer;
    std::optional<Time> Deadline; // nothing while a request is answered
};

/// A request whose end has not come yet.
struct HttpDaemon::Exchange
{
    std::string Method;
    std::string Path;
    std::string Body = {};
    bool IsTooLong = false;
};

/// A stream on its way to a viewer.
struct HttpDaemon::Sending
{
    HttpDaemon& Owner;
    MHD_Connection& To;
    std::unique_ptr<AnswerStream> Stream;
    EventStream* Events; // the same when it is one
};

/// What the library of HTTP calls, on the thread of Run. No exception may pass through it.
struct HttpDaemon::Callbacks
{
    template <class TResult, class TFunction>
    static TResult Guard(TResult failure, const TFunction& function)
    {
        try
        {
            return function();
        }
        catch (const std::exception&)
        {
            return failure; // the connection ends
        }
    }

    static void OnConnection(void* self, MHD_Connection* connection, void** state, MHD_ConnectionNotificationCode code)
    {
        auto& daemon = *static_cast<HttpDaemon*>(self);
        if (code == MHD_CONNECTION_NOTIFY_CLOSED)
        {
            auto* const known = static_cast<Connection*>(*state);
            daemon.connections.erase(known);
            delete known; // NOLINT(cppcoreguidelines-owning-memory): the library of HTTP keeps it for us
            *state = nullptr;
            return;
        }
        Guard(0, [&] {
            const int socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
            const sockaddr* const viewer =
                MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS)->client_addr;
            auto known = std::make_unique<Connection>(
                Connection{socket, InternetAddress::LocalOf(socket), InternetAddress(*viewer), Now() + RequestTime});
            daemon.connections.insert(known.get());
            *state = known.release();
            return 0;
        });
    }

    static MHD_Result OnRequest(void* self,
                                MHD_Connection* connection,
                                const char* path,
                                const char* method,
                                const char* /*version*/,
                                const char* body,
                                std::size_t* bodySize,
                                void** state)
    {
        return Guard(MHD_NO, [&] {
            auto& daemon = *static_cast<HttpDaemon*>(self);
            if (*state == nullptr)
            {
                *state = std::make_unique<Exchange>(Exchange{method, path}).release();
                return MHD_YES;
            }
            auto& exchange = *static_cast<Exchange*>(*state);
            if (*bodySize != 0)
            {
                exchange.IsTooLong = exchange.IsTooLong || exchange.Body.size() + *bodySize > RequestDesk::MaximumBody;
                exchange.Body.append(body, exchange.IsTooLong ? 0 : *bodySize);
                *bodySize = 0;
                return exchange.IsTooLong ? MHD_NO : MHD_YES;
            }
            return daemon.Reply(*connection, exchange) ? MHD_YES : MHD_NO;
        });
    }

    static void OnCompleted(void* /*self*/,
                            MHD_Connection* connection,
                            void** state,
                            MHD_RequestTerminationCode /*code*/)
    {
        delete static_cast<Exchange*>(*state); // NOLINT(cppcoreguidelines-owning-memory): as above
        *state = nullptr;
        if (Connection* const known = Of(*connection))
        {
            known->Deadline = Now() + RequestTime;
        }
    }

    static ssize_t OnRead(void* state, std::uint64_t /*position*/, char* buffer, std::size_t size)
    {
        return Guard(static_cast<ssize_t>(MHD_CONTENT_READER_END_WITH_ERROR), [&] {
            auto& sending = *static_cast<Sending*>(state);
            if (sending.Owner.isStopping && sending.Events != nullptr)
            {
                return static_cast<ssize_t>(MHD_CONTENT_READER_END_OF_STREAM);
            }
            const std::optional<std::size_t> length = sending.Stream->Read(buffer, size, Now());
            if (length && *length == 0)
            {
                sending.Owner.waiting.insert(&sending);
                MHD_suspend_connection(&sending.To);
            }
            return length ? static_cast<ssize_t>(*length) : static_cast<ssize_t>(MHD_CONTENT_READER_END_OF_STREAM);
        });
    }

    static void OnSent(void* state)
    {
        const std::unique_ptr<Sending> sending(static_cast<Sending*>(state));
        sending->Owner.waiting.erase(sending.get());
        sending->Owner.streams -= sending->Events != nullptr ? 1U : 0U;
    }

    static Connection* Of(MHD_Connection& connection)
    {
        return static_cast<Connection*>(
            MHD_get_connection_info(&connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context);
    }
};

HttpDaemon::HttpDaemon(const PageSettings& settings, PageSecrets secrets, SharedModel& model)
    : model(model)
    , secrets(std::move(secrets))
    , listener(InternetAddress::Parse(settings.Address, settings.Port).value())
    , url(UrlOf(settings, InternetAddress::LocalOf(listener.Descriptor())))
    , desk(RulesOf(settings, this->secrets, InternetAddress::LocalOf(listener.Descriptor()).Port()))
    , news(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    Start(settings);
    daemonEvents = MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
}

HttpDaemon::~HttpDaemon()
{
    MHD_stop_daemon(daemon);
    close(news);
}

void HttpDaemon::Start(const PageSettings& settings)
{
    const auto number = [](auto value) { return static_cast<std::intptr_t>(value); };
    const bool isForThisMachine = InternetAddress::LocalOf(listener.Descriptor()).IsLoopback();
    const unsigned perViewer =
        isForThisMachine ? PageServer::MaximumConnections : PageServer::MaximumConnectionsOfViewer;
    std::vector<MHD_OptionItem> options = {
        {MHD_OPTION_CONNECTION_LIMIT, number(PageServer::MaximumConnections), nullptr},
        {MHD_OPTION_PER_IP_CONNECTION_LIMIT, number(perViewer), nullptr},
        {MHD_OPTION_CONNECTION_TIMEOUT, number(SendTime.count()), nullptr},
        {MHD_OPTION_CONNECTION_MEMORY_LIMIT, number(ConnectionBytes), nullptr},
        {MHD_OPTION_SIGPIPE_HANDLED_BY_APP, 1, nullptr}, // by the thread of Run
        {MHD_OPTION_NOTIFY_COMPLETED, reinterpret_cast<std::intptr_t>(&Callbacks::OnCompleted), this},
        {MHD_OPTION_NOTIFY_CONNECTION, reinterpret_cast<std::intptr_t>(&Callbacks::OnConnection), this},
    };
    unsigned flags = MHD_USE_EPOLL | MHD_USE_NO_LISTEN_SOCKET | MHD_ALLOW_SUSPEND_RESUME;
    const auto text = [&options](MHD_OPTION option, const std::string& value) {
        options.push_back({option, 0, const_cast<char*>(value.c_str())}); // the library of HTTP reads it
    };
    if (!settings.CertificateFile.empty())
    {
        flags |= MHD_USE_TLS;
        text(MHD_OPTION_HTTPS_MEM_CERT, secrets.Certificate);
        text(MHD_OPTION_HTTPS_MEM_KEY, secrets.Key);
        options.push_back({MHD_OPTION_HTTPS_PRIORITIES, 0, const_cast<char*>(TlsPriorities)});
    }
    if (!secrets.Authority.empty())
    {
        text(MHD_OPTION_HTTPS_MEM_TRUST, secrets.Authority);
    }
    options.push_back({MHD_OPTION_END, 0, nullptr});
    daemon = MHD_start_daemon(flags, 0, nullptr, nullptr, &Callbacks::OnRequest, this, MHD_OPTION_ARRAY, options.data(),
                              MHD_OPTION_END);
    if (daemon == nullptr)
    {
        const std::string reason = std::generic_category().message(errno);
        close(news);
        throw std::runtime_error("cannot serve the page on " + url + ": " + reason);
    }
}

void HttpDaemon::Run()
{
    while (!isStopping)
    {
        Wait();
        AcceptAll();
        const Time now = Now();
        std::uint64_t count = 0;
        ResumeDue(read(news, &count, sizeof(count)) > 0, now);
        CutLate(now);
        MHD_run(daemon);
    }
    EndStreams();
}

void HttpDaemon::Wake()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(news, &one, sizeof(one)); // it fails when it is awake already
}

void HttpDaemon::Stop()
{
    isStopping = true;
    Wake();
}

void HttpDaemon::Wait()
{
    const Time now = Now();
    const bool accepts = !acceptsAgain || now >= *acceptsAgain;
    std::array<pollfd, 3> descriptors = {pollfd{news, POLLIN, 0}, pollfd{daemonEvents, POLLIN, 0},
                                         pollfd{accepts ? listener.Descriptor() : -1, POLLIN, 0}};
    poll(descriptors.data(), descriptors.size(), WaitMilliseconds(now));
}

int HttpDaemon::WaitMilliseconds(Time now) const
{
    Time next = now + std::chrono::hours(1);
    MHD_UNSIGNED_LONG_LONG milliseconds = 0;
    if (MHD_get_timeout(daemon, &milliseconds) == MHD_YES)
    {
        next = std::min(next, now + std::chrono::milliseconds(std::min<std::uint64_t>(milliseconds, 3600000)));
    }
    for (const Connection* const each : connections)
    {
        next = std::min(next, each->Deadline.value_or(next));
    }
    for (const Sending* const each : waiting)
    {
        next = std::min(next, each->Events->NextComment());
    }
    next = std::min(next, acceptsAgain.value_or(next));
    return static_cast<int>(
        std::chrono::ceil<std::chrono::milliseconds>(std::max(next - now, Time::duration(0))).count());
}

void HttpDaemon::AcceptAll()
{
    if (acceptsAgain && Now() < *acceptsAgain)
    {
        return;
    }
    acceptsAgain.reset();
    bool isExhausted = false;
    while (const std::optional<ListeningSocket::Viewer> viewer = listener.Accept(isExhausted))
    {
        MHD_add_connection(daemon, viewer->Socket, viewer->Address.Get(), viewer->Address.Size()); // closes it, too
    }
    if (isExhausted)
    {
        acceptsAgain = Now() + AcceptPause;
    }
}

/// Ends connections on which no request has come in time. The library of HTTP counts from the last byte alone.
void HttpDaemon::CutLate(Time now)
{
    for (const Connection* const each : connections)
    {
        if (each->Deadline && *each->Deadline <= now)
        {
            shutdown(each->Socket, SHUT_RDWR);
        }
    }
}

void HttpDaemon::ResumeDue(bool isNews, Time now)
{
    for (auto each = waiting.begin(); each != waiting.end();)
    {
        Sending* const sending = *each;
        ++each;
        if (isNews || sending->Events->NextComment() <= now)
        {
            Resume(*sending);
        }
    }
}

void HttpDaemon::Resume(Sending& sending)
{
    waiting.erase(&sending);
    MHD_resume_connection(&sending.To);
}

/// The library of HTTP must not be stopped while it has suspended connections. OnRead suspends none any more.
void HttpDaemon::EndStreams()
{
    while (!waiting.empty())
    {
        Resume(**waiting.begin());
    }
    MHD_run(daemon);
}

Request HttpDaemon::RequestOf(MHD_Connection& connection, Exchange& exchange) const
{
    const Connection* const known = Callbacks::Of(connection);
    Request request{exchange.Method, exchange.Path, HostsOf(connection)};
    request.LocalAddress = known->Local.Text();
    request.Viewer = known->Viewer.Text();
    request.Cookies = ValueOf(connection, MHD_HEADER_KIND, "Cookie");
    request.Authorization = ValueOf(connection, MHD_HEADER_KIND, "Authorization");
    request.LastEventId = PossibleValueOf(connection, MHD_HEADER_KIND, "Last-Event-ID");
    request.After = PossibleValueOf(connection, MHD_GET_ARGUMENT_KIND, "after");
    request.HasCertificate = HasGoodCertificate(connection);
    request.Body = std::move(exchange.Body);
    return request;
}

bool HttpDaemon::Reply(MHD_Connection& connection, Exchange& exchange)
{
    Connection* const known = Callbacks::Of(connection);
    if (known == nullptr)
    {
        return false;
    }
    known->Deadline.reset();
    const Request request = RequestOf(connection, exchange);
    const RequestDesk::Moment moment{Now(), std::chrono::system_clock::now()};
    return Send(connection, model.With([&](const PageModel& each) { return desk.Decide(request, each, moment); }));
}

bool HttpDaemon::Send(MHD_Connection& connection, Answer answer)
{
    if (answer.Content == Answer::AnswerContent::Events && streams >= PageServer::MaximumStreams)
    {
        answer = RequestDesk::TextAnswer(503, "too many viewers", {{"Retry-After", "60"}});
    }
    const std::unique_ptr<MHD_Response, decltype(&MHD_destroy_response)> response(ResponseOf(connection, answer),
                                                                                  MHD_destroy_response);
    if (!response)
    {
        return false;
    }
    MHD_add_response_header(response.get(), MHD_HTTP_HEADER_CONTENT_TYPE, answer.Type.c_str());
    for (const auto* const headers : {&RequestDesk::CommonHeaders(), &std::as_const(answer.Headers)})
    {
        for (const auto& [name, value] : *headers)
        {
            MHD_add_response_header(response.get(), name.c_str(), value.c_str());
        }
    }
    return MHD_queue_response(&connection, answer.Status, response.get()) == MHD_YES;
}

MHD_Response* HttpDaemon::ResponseOf(MHD_Connection& connection, const Answer& answer)
{
    switch (answer.Content)
    {
    case Answer::AnswerContent::Devices:
        return StreamResponse(connection, std::make_unique<DevicesStream>(model));
    case Answer::AnswerContent::Events:
        return StreamResponse(connection, std::make_unique<EventStream>(model, answer.From, Now()));
    case Answer::AnswerContent::Text:
        break;
    }
    void* const bytes = const_cast<char*>(answer.Body.data()); // they are copied
    return MHD_create_response_from_buffer(answer.Body.size(), bytes, MHD_RESPMEM_MUST_COPY);
}

MHD_Response* HttpDaemon::StreamResponse(MHD_Connection& connection, std::unique_ptr<AnswerStream> stream)
{
    auto* const events = dynamic_cast<EventStream*>(stream.get());
    auto sending = std::make_unique<Sending>(Sending{*this, connection, std::move(stream), events});
    MHD_Response* const response = MHD_create_response_from_callback(
        MHD_SIZE_UNKNOWN, AnswerStream::PieceBytes, &Callbacks::OnRead, sending.get(), &Callbacks::OnSent);
    if (response != nullptr)
    {
        streams += events != nullptr ? 1U : 0U;
        static_cast<void>(sending.release()); // OnSent deletes it
    }
    return response;
}

/// Whether the viewer has shown a certificate that the authority has signed for viewers.
bool HttpDaemon::HasGoodCertificate(MHD_Connection& connection) const
{
    if (secrets.Authority.empty())
    {
        return false;
    }
    auto* const session = static_cast<gnutls_session_t>(
        MHD_get_connection_info(&connection, MHD_CONNECTION_INFO_GNUTLS_SESSION)->tls_session);
    std::string purpose = GNUTLS_KP_TLS_WWW_CLIENT;
    gnutls_typed_vdata_st wanted = {GNUTLS_DT_KEY_PURPOSE_OID, reinterpret_cast<unsigned char*>(purpose.data()), 0};
    unsigned status = 0;
    return gnutls_certificate_verify_peers(session, &wanted, 1, &status) == 0 && status == 0;
}
} // namespace Zent::Discovery::Page
