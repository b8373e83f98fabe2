#include "Page/PageServer.h"

#include "HttpDaemon.h"
#include "PageSecrets.h"
#include "Programs/RandomName.h"
#include "SharedModel.h"

#include <csignal>
#include <pthread.h>
#include <thread>

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
        : model(Programs::RandomName::Make())
        , daemon(Checked(settings), PageSecrets::Load(settings), model)
        , thread([this] { Serve(); })
    {
    }

    ~Implementation()
    {
        daemon.Stop();
        thread.join();
    }

    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    SharedModel& Model() { return model; }

    HttpDaemon& Daemon() { return daemon; }

private:
    /// All signals are the main thread's; a viewer that goes away in the middle of an answer is none.
    void Serve()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        daemon.Run();
    }

    SharedModel model;
    HttpDaemon daemon;
    std::thread thread;
};

PageServer::PageServer(const PageSettings& settings)
    : implementation(std::make_unique<Implementation>(settings))
{
}

PageServer::~PageServer() = default;

void PageServer::Update(const std::function<void(PageModel& model)>& change)
{
    implementation->Model().With([&change](PageModel& model) { change(model); });
    implementation->Daemon().Wake();
}

const std::string& PageServer::Url() const
{
    return implementation->Daemon().Url();
}
} // namespace Zent::Discovery::Page
