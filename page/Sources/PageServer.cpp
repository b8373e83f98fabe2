#include "Page/PageServer.h"

#include "HttpDaemon.h"
#include "PageSecrets.h"
#include "SharedModel.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <pthread.h>
#include <random>
#include <thread>

namespace Zent::Discovery::Page
{
namespace
{
std::string RandomName()
{
    std::random_device random;
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%08x%08x", random(), random());
    return text.data();
}

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
        : model(RandomName())
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
