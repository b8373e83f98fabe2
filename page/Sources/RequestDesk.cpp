#include "RequestDesk.h"

#include "Assets.h"
#include "HttpText.h"
#include "PrometheusText.h"

#include <algorithm>

namespace Zent::Discovery::Page
{
namespace
{
constexpr std::string_view TokenPath = "/token";

Answer FileAnswer(unsigned status, const Assets::Asset& asset)
{
    return {status, std::string(asset.Type), std::string(asset.Bytes)};
}

/// The file of a path; null when there is none.
const Assets::Asset* FileAt(std::string_view path)
{
    const std::string_view name = path.starts_with('/') ? path.substr(1) : "";
    const Assets::Asset* const file = Assets::Find(path == "/" ? "index.html" : name);
    const bool isPage = file != nullptr && std::string_view(file->Name).ends_with(".html");
    return isPage && path != "/" ? nullptr : file;
}

Answer TokenForm(unsigned status)
{
    return FileAnswer(status, *Assets::Find("token.html"));
}

Answer TooManyWrong()
{
    const std::string seconds = std::to_string(TokenGate::WrongLasts.count());
    return RequestDesk::TextAnswer(429, "too many wrong tokens: try again in a minute", {{"Retry-After", seconds}});
}
} // namespace

RequestDesk::RequestDesk(Rules rules)
    : rules(std::move(rules))
{
    if (this->rules.Token)
    {
        gate.emplace(*this->rules.Token);
    }
}

const std::vector<Answer::Header>& RequestDesk::CommonHeaders()
{
    static const std::vector<Answer::Header> Headers = {
        {"Content-Security-Policy", "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
                                    "connect-src 'self'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'; "
                                    "require-trusted-types-for 'script'"},
        {"X-Content-Type-Options", "nosniff"},
        {"Referrer-Policy", "no-referrer"},
        {"Cross-Origin-Resource-Policy", "same-origin"},
        {"Cache-Control", "no-store"}};
    return Headers;
}

Answer RequestDesk::TextAnswer(unsigned status, const std::string& text, std::vector<Answer::Header> headers)
{
    return {status, "text/plain; charset=utf-8", text + "\n", std::move(headers)};
}

Answer RequestDesk::Decide(const Request& request, const PageModel& model, const Moment& moment)
{
    // A page of somebody else's, whose name was made to lead here, must not read what this one shows.
    if (!IsHost(request))
    {
        return TextAnswer(421,
                          "this machine is not called so here: the names setting has those that it may be called by");
    }
    const bool isTokenPath = request.Path == TokenPath && gate;
    const std::string allowed = isTokenPath ? "POST" : "GET, HEAD";
    const bool isAllowed = isTokenPath ? request.Method == "POST" : request.Method == "GET" || request.Method == "HEAD";
    if (!isAllowed)
    {
        return TextAnswer(405, "only " + allowed, {{"Allow", allowed}});
    }
    if (isTokenPath)
    {
        return TakeToken(request, moment);
    }
    if (const Assets::Asset* const file = FileAt(request.Path); file != nullptr && request.Path != "/")
    {
        return FileAnswer(200, *file); // the same for all, and no secret: the form for the token needs some
    }
    if (std::optional<Answer> refusal = Refuse(request, moment))
    {
        return std::move(*refusal);
    }
    Answer answer = Serve(request, model, moment);
    if (request.Method == "HEAD")
    {
        answer.Content = Answer::AnswerContent::Text; // the end of a stream takes bytes, and none may come here
    }
    return answer;
}

bool RequestDesk::IsHost(const Request& request) const
{
    const std::optional<std::string> host =
        request.Hosts.size() == 1 ? HttpText::HostOf(request.Hosts.front()) : std::nullopt;
    return host && (*host == "localhost" || *host == request.LocalAddress ||
                    std::ranges::find(rules.Names, *host) != rules.Names.end());
}

std::optional<Answer> RequestDesk::Refuse(const Request& request, const Moment& moment)
{
    if (rules.IsOpen || request.HasCertificate)
    {
        return std::nullopt;
    }
    if (!gate)
    {
        return TextAnswer(403, "a certificate is needed that the page's authority has signed");
    }
    const std::optional<std::string> cookie = HttpText::Cookie(request.Cookies, rules.CookieName);
    if (cookie && gate->IsCookie(*cookie, moment.WallNow))
    {
        return std::nullopt;
    }
    if (const std::optional<std::string> token = HttpText::BearerToken(request.Authorization))
    {
        switch (gate->Judge(request.Viewer, *token, moment.Now))
        {
        case TokenGate::GateVerdict::Right:
            return std::nullopt;
        case TokenGate::GateVerdict::TooMany:
            return TooManyWrong();
        case TokenGate::GateVerdict::Wrong:
            break;
        }
    }
    return request.Path == "/" ? TokenForm(200)
                               : TextAnswer(401, "the token is needed", {{"WWW-Authenticate", "Bearer"}});
}

Answer RequestDesk::TakeToken(const Request& request, const Moment& moment)
{
    const std::string given = HttpText::FormField(request.Body, "token").value_or("");
    switch (gate->Judge(request.Viewer, given, moment.Now))
    {
    case TokenGate::GateVerdict::Wrong:
        return TokenForm(403);
    case TokenGate::GateVerdict::TooMany:
        return TooManyWrong();
    case TokenGate::GateVerdict::Right:
        break;
    }
    const std::string age = std::to_string(std::chrono::seconds(TokenGate::CookieLasts).count());
    return TextAnswer(303, "the token is right",
                      {{"Location", "/"},
                       {"Set-Cookie", rules.CookieName + "=" + gate->NewCookie(moment.WallNow) + "; Max-Age=" + age +
                                          "; Path=/; Secure; HttpOnly; SameSite=Strict"}});
}

Answer RequestDesk::Serve(const Request& request, const PageModel& model, const Moment& moment)
{
    if (request.Path == "/")
    {
        return FileAnswer(200, *FileAt("/"));
    }
    if (request.Path == "/devices.json")
    {
        return {200, "application/json", "", {}, Answer::AnswerContent::Devices};
    }
    if (request.Path == "/events")
    {
        const std::optional<std::string> seen = request.LastEventId ? request.LastEventId : request.After;
        const std::optional<PageModel::Position> from = seen ? model.Find(*seen) : model.Newest();
        return {200, "text/event-stream", "", {}, Answer::AnswerContent::Events, from};
    }
    if (request.Path == "/metrics")
    {
        return {200, PrometheusText::ContentType, model.MetricsText()};
    }
    if (request.Path == "/healthz")
    {
        const std::string problem = model.Problem(moment.Now);
        return TextAnswer(problem.empty() ? 200 : 503, problem.empty() ? "well" : problem);
    }
    return TextAnswer(404, "there is nothing here");
}
} // namespace Zent::Discovery::Page
