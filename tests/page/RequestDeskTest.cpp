#include "RequestDesk.h"

#include "HttpText.h"
#include "Page/PageServer.h"
#include "Programs/WrongArgument.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace Zent::Discovery::Page;
using namespace std::chrono_literals;
using Zent::Discovery::Programs::WrongArgument;

namespace
{
const std::string Token = "0123456789abcdef0123456789abcdef";

class RequestDeskTest : public testing::Test
{
protected:
    explicit RequestDeskTest(RequestDesk::Rules rules = {{"plant.example"}, true, std::nullopt, ""})
        : desk(std::move(rules))
    {
    }

    Answer Decide(Request request)
    {
        request.LocalAddress = "10.0.0.1";
        return desk.Decide(request, model, moment);
    }

    Answer Get(const std::string& path, const std::string& host = "10.0.0.1:12080")
    {
        return Decide({"GET", path, {host}});
    }

    Answer Enter(const std::string& body, const std::string& viewer)
    {
        Request request{"POST", "/token", {"10.0.0.1"}};
        request.Viewer = viewer;
        request.Body = body;
        return Decide(request);
    }

    static std::string HeaderOf(const Answer& answer, const std::string& name)
    {
        for (const auto& [each, value] : answer.Headers)
        {
            if (each == name)
            {
                return value;
            }
        }
        return "";
    }

    PageModel model{"a"};
    RequestDesk::Moment moment{PageModel::Time(1h), Zent::Discovery::Fleet::WallTime(20000h)};
    RequestDesk desk;
};

class TokenDeskTest : public RequestDeskTest
{
protected:
    TokenDeskTest()
        : RequestDeskTest({{}, false, Token, "c"})
    {
    }
};

TEST_F(RequestDeskTest, OnlyWhoCallsTheMachineByItsNamesAndReadsIsAnswered)
{
    for (const char* host :
         {"10.0.0.1", "10.0.0.1:80", "localhost:12080", "LOCALHOST", "Plant.Example:443", "localhost:"})
    {
        EXPECT_EQ(Get("/", host).Status, 200) << host;
    }
    for (const char* host : {"", "evil.example", "10.0.0.2", "localhost.evil.example", "localhost:x", "localhost:70000",
                             "[10.0.0.1", "localhost:80:80", "user@localhost", "::1", "localhost "})
    {
        EXPECT_EQ(Get("/", host).Status, 421) << host;
    }
    EXPECT_EQ(Decide({"GET", "/", {}}).Status, 421);
    EXPECT_EQ(Decide({"GET", "/", {"localhost", "localhost"}}).Status, 421);
    EXPECT_EQ(HttpText::HostOf("[::1]:12080"), "::1");

    for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "get", ""})
    {
        const Answer answer = Decide({method, "/devices.json", {"localhost"}});
        EXPECT_EQ(answer.Status, 405) << method;
        EXPECT_EQ(HeaderOf(answer, "Allow"), "GET, HEAD");
    }
    for (const char* path :
         {"", "/x", "//", "/index.html", "/token.html", "/token", "/../page.css", "http://localhost/"})
    {
        EXPECT_EQ(Get(path).Status, 404) << path;
    }
    EXPECT_EQ(Get("/healthz").Status, 503);
    model.SetHealth("", moment.Now);
    EXPECT_EQ(Get("/healthz").Status, 200);
}

TEST_F(RequestDeskTest, TheHeaderWinsOverTheQueryWhenAViewerComesBack)
{
    model.SetSite("s", "ready", "");
    model.SetSite("t", "ready", "");
    Request request{"GET", "/events", {"localhost"}};
    EXPECT_EQ(Decide(request).From, 2);
    request.After = "a-1";
    EXPECT_EQ(Decide(request).From, 1);
    request.LastEventId = "a-0";
    EXPECT_EQ(Decide(request).From, 0);
    request.LastEventId = "b-1";
    EXPECT_EQ(Decide(request).From, std::nullopt);
}

TEST_F(TokenDeskTest, TheTokenOpensAllOnceAndItsCookieDoesNotTellIt)
{
    EXPECT_NE(Get("/").Body.find("name=\"token\""), std::string::npos);
    EXPECT_EQ(Get("/page.css").Status, 200);
    for (const char* path : {"/devices.json", "/events", "/metrics", "/healthz", "/x"})
    {
        EXPECT_EQ(Get(path).Status, 401) << path;
    }
    EXPECT_EQ(Decide({"GET", "/token", {"localhost"}}).Status, 405);
    const Answer answer = Enter("x=1&token=%30" + Token.substr(1), "v");
    ASSERT_EQ(answer.Status, 303);
    const std::string set = HeaderOf(answer, "Set-Cookie");
    for (const char* part : {"; Secure", "; HttpOnly", "; SameSite=Strict", "; Path=/"})
    {
        EXPECT_NE(set.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(set.find(Token), std::string::npos);
    const std::string cookie = set.substr(2, set.find(';') - 2);

    Request request{"GET", "/devices.json", {"localhost"}};
    request.Cookies = "b=1; c=" + cookie;
    EXPECT_EQ(Decide(request).Status, 200);
    for (const std::string& wrong : {cookie.substr(1), cookie + "0", "9" + cookie, std::string("."), std::string()})
    {
        Request other = request;
        other.Cookies = "c=" + wrong;
        EXPECT_EQ(Decide(other).Status, 401) << wrong;
    }
    moment.WallNow += TokenGate::CookieLasts;
    EXPECT_EQ(Decide(request).Status, 401);
    request.Authorization = "bearer  " + Token;
    EXPECT_EQ(Decide(request).Status, 200);
    request.Authorization = "Basic " + Token;
    EXPECT_EQ(Decide(request).Status, 401);
}

TEST_F(TokenDeskTest, WhoEntersWrongTokensWaitsAndNobodyElse)
{
    for (unsigned i = 0; i < TokenGate::MaximumWrong; ++i)
    {
        EXPECT_EQ(Enter(i % 2 == 0 ? "token=%zz" : "token=" + Token + "0", "v").Status, 403);
    }
    const Answer answer = Enter("token=" + Token, "v");
    EXPECT_EQ(answer.Status, 429);
    EXPECT_EQ(HeaderOf(answer, "Retry-After"), "60");
    EXPECT_EQ(Enter("token=" + Token, "w").Status, 303);
    moment.Now += TokenGate::WrongLasts;
    EXPECT_EQ(Enter("token=" + Token, "v").Status, 303);
}

TEST(PageSettingsTest, WhoIsNotOnThisMachineComesByTlsAndShowsThatHeMay)
{
    const Tests::TemporaryFolder folder;
    const auto file = [&](const std::string& name, const std::string& text, std::filesystem::perms rights) {
        const std::filesystem::path path = folder.PathOf(name);
        std::ofstream(path) << text << '\n';
        std::filesystem::permissions(path, rights);
        return path.string();
    };
    const auto own = std::filesystem::perms::owner_read;
    const std::string token = file("token", Token, own);
    const auto reason = [](const PageSettings& settings) -> std::string {
        try
        {
            settings.Check();
            return "";
        }
        catch (const WrongArgument& error)
        {
            return error.what();
        }
    };
    EXPECT_EQ(reason({}), "");
    EXPECT_EQ(reason({.Address = "::1"}), "");
    for (const auto& [settings, part] : std::vector<std::pair<PageSettings, std::string>>{
             {{.Address = "localhost"}, "neither an IPv4 nor an IPv6 address"},
             {{.Address = "0.0.0.0"}, "other machines: it needs certificate and key, and either an authority"},
             {{.Address = "0.0.0.0", .CertificateFile = token, .KeyFile = token}, "machines: it needs an authority"},
             {{.CertificateFile = token}, "belong together"},
             {{.TokenFile = token}, "need certificate and key"},
             {{.CertificateFile = token, .KeyFile = token, .TokenFile = token}, "cannot be used: "},
             {{.CertificateFile = token, .KeyFile = file("all", "", own | std::filesystem::perms::others_read)},
              "nobody but its owner"},
             {{.CertificateFile = token, .KeyFile = token + "x"}, "No such file"},
             {{.Names = {"a:80"}}, "no name that the page's machine"},
             {{.Names = {"*.example"}}, "no name that the page's machine"}})
    {
        EXPECT_NE(reason(settings).find(part), std::string::npos) << part << ": " << reason(settings);
    }
    for (const char* weak : {"", "short", "12345678901234567890123456789012345678", "0123456789abcdef0123456789abcde",
                             "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", "with blanks in it, and long enough for all"})
    {
        EXPECT_NE(TokenGate::WeaknessOf(weak), "") << weak;
    }
    EXPECT_EQ(TokenGate::WeaknessOf("MDEyMzQ1Njc4OWFiY2RlZg"), "");
}
} // namespace
