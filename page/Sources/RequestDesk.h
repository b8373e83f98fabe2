#pragma once

#include "Page/PageModel.h"
#include "TokenGate.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Zent::Discovery::Page
{
/// A request as far as the page cares.
struct Request
{
    std::string Method;
    std::string Path;
    std::vector<std::string> Hosts = {}; // values of the Host headers: there should be one
    std::string LocalAddress = {};       // of this machine, that the viewer has reached
    std::string Viewer = {};             // the address that it came from
    std::string Cookies = {};
    std::string Authorization = {};
    std::optional<std::string> LastEventId = {};
    std::optional<std::string> After = {}; // of the query
    bool HasCertificate = false;           // one of the authority
    std::string Body = {};
};

/// What is said to it.
struct Answer
{
    enum class AnswerContent
    {
        Text,
        Devices, // the document with everything
        Events
    };

    using Header = std::pair<std::string, std::string>;

    unsigned Status;
    std::string Type;
    std::string Body = {};
    std::vector<Header> Headers = {};
    AnswerContent Content = AnswerContent::Text;
    std::optional<PageModel::Position> From = {}; // of Events; nothing for a viewer that must begin anew
};

/// Decides what each request gets. One thread; reads no clock.
class RequestDesk final
{
public:
    struct Rules
    {
        std::vector<std::string> Names;        // that viewers may call the machine by
        bool IsOpen = true;                    // to whoever reaches it
        std::optional<std::string> Token = {}; // of those who do not show a certificate
        std::string CookieName = {};
    };

    struct Moment
    {
        PageModel::Time Now;
        Fleet::WallTime WallNow;
    };

    /// Of a form.
    static constexpr std::size_t MaximumBody = 4096;

    explicit RequestDesk(Rules rules);

    Answer Decide(const Request& request, const PageModel& model, const Moment& moment);

    /// Beside those of the answer, with every answer.
    static const std::vector<Answer::Header>& CommonHeaders();

    static Answer TextAnswer(unsigned status, const std::string& text, std::vector<Answer::Header> headers = {});

private:
    bool IsHost(const Request& request) const;
    std::optional<Answer> Refuse(const Request& request, const Moment& moment);
    Answer TakeToken(const Request& request, const Moment& moment);
    static Answer Serve(const Request& request, const PageModel& model, const Moment& moment);

    const Rules rules;
    std::optional<TokenGate> gate;
};
} // namespace Zent::Discovery::Page
