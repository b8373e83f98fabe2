#pragma once

#include "InternetAddress.h"
#include "ListeningSocket.h"
#include "Page/PageSettings.h"
#include "PageSecrets.h"
#include "RequestDesk.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>

struct MHD_Connection;
struct MHD_Daemon;
struct MHD_Response;

namespace Zent::Discovery::Page
{
class AnswerStream;
class EventStream;
class SharedModel;

/// Speaks HTTP with viewers. One thread, unless said otherwise: it makes the object and calls Run.
class HttpDaemon final
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// From the first byte of a connection, or the end of a request, to the whole of the next request.
    static constexpr std::chrono::seconds RequestTime{20};

    /// How long a viewer may take nothing of what is sent.
    static constexpr std::chrono::seconds SendTime{30};

    /// For the head of a request; what is sent passes through the same.
    static constexpr std::size_t ConnectionBytes = std::size_t{32} * 1024;

    /// The model must outlive the object. The settings are checked.
    /// @throws std::runtime_error with the reason when the address cannot be had.
    HttpDaemon(const PageSettings& settings, PageSecrets secrets, SharedModel& model);
    ~HttpDaemon();

    HttpDaemon(const HttpDaemon&) = delete;
    HttpDaemon& operator=(const HttpDaemon&) = delete;

    const std::string& Url() const { return url; }

    /// Until Stop.
    void Run();

    /// The model has changed. Any thread.
    void Wake();

    /// Any thread.
    void Stop();

private:
    struct Connection;
    struct Exchange;
    struct Sending;
    struct Callbacks;

    void Start(const PageSettings& settings);
    void Wait();
    int WaitMilliseconds(Time now) const;
    void AcceptAll();
    void CutLate(Time now);
    void ResumeDue(bool isNews, Time now);
    void Resume(Sending& sending);
    void EndStreams();
    Request RequestOf(MHD_Connection& connection, Exchange& exchange) const;
    bool Reply(MHD_Connection& connection, Exchange& exchange);
    bool Send(MHD_Connection& connection, Answer answer);
    MHD_Response* ResponseOf(MHD_Connection& connection, const Answer& answer);
    MHD_Response* StreamResponse(MHD_Connection& connection, std::unique_ptr<AnswerStream> stream);
    bool HasGoodCertificate(MHD_Connection& connection) const;

    SharedModel& model;
    const PageSecrets secrets;
    ListeningSocket listener;
    const std::string url;
    RequestDesk desk;
    const int news; // an eventfd, written by Wake and Stop
    MHD_Daemon* daemon = nullptr;
    int daemonEvents = -1;
    std::set<Connection*> connections;
    std::set<Sending*> waiting; // streams that are suspended
    unsigned streams = 0;       // of events
    std::optional<Time> acceptsAgain;
    std::atomic<bool> isStopping{false}; // set by Stop
};
} // namespace Zent::Discovery::Page
