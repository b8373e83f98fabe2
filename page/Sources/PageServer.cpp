#include "Page/PageServer.h"

#include "HttpDaemon.h"
#include "PageSecrets.h"
#include "Programs/RandomName.h"
#include "SharedModel.h"

#include <csignal>
#include <functional>
#include <pthread.h>
#include <thread>
#include <utility>

namespace Zent::Discovery::Page
{
namespace
{
const PageSettings& Checked(const PageSettings& settings)
{
    settings.Check();
    return settings;
}
} // namespace

class PageServer::Implementation final
{
public:
    explicit Implementation(const PageSettings& settings)
        : settings(Checked(settings))
        , secrets(PageSecrets::Load(settings))
        , model(Programs::RandomName::Make())
    {
    }

    ~Implementation()
    {
        if (daemon)
        {
            daemon->Stop();
            thread.join();
        }
    }

    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    void Listen()
    {
        auto made = std::make_unique<HttpDaemon>(settings, secrets, model);
        thread = std::thread(Serve, std::ref(*made));
        daemon = std::move(made);
    }

    SharedModel& Model() { return model; }

    /// Null while it does not listen.
    HttpDaemon* Daemon() const { return daemon.get(); }

private:
    /// All signals are the main thread's; a viewer that goes away in the middle of an answer is none.
    static void Serve(HttpDaemon& daemon)
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        daemon.Run();
    }

    const PageSettings settings;
    const PageSecrets secrets;
    SharedModel model;
    std::unique_ptr<HttpDaemon> daemon;
    std::thread thread; // of the daemon
};

PageServer::PageServer(const PageSettings& settings)
    : implementation(std::make_unique<Implementation>(settings))
{
}

PageServer::~PageServer() = default;

void PageServer::Listen()
{
    implementation->Listen();
}

bool PageServer::IsListening() const
{
    return implementation->Daemon() != nullptr;
}

void PageServer::Update(const std::function<void(PageModel& model)>& change)
{
    implementation->Model().With([&change](PageModel& model) { change(model); });
    if (HttpDaemon* const daemon = implementation->Daemon())
    {
        daemon->Wake();
    }
}

const std::string& PageServer::Url() const
{
    return implementation->Daemon()->Url();
}
} // namespace Zent::Discovery::Page
