#include "Terminal/LineInput.h"

#include "Programs/Mutex.h"
#include "Programs/Process.h"

#include <algorithm>
#include <cctype>
#include <deque>
#include <thread>
#include <utility>

using Zent::Discovery::Programs::Lock;
using Zent::Discovery::Programs::Mutex;
using Zent::Discovery::Programs::Process;

namespace Zent::Discovery::Console
{
struct LineInput::State
{
    static void Tell(const std::function<void()>& handler)
    {
        if (handler)
        {
            handler();
        }
    }

    Mutex ChangeLock;
    std::function<void()> OnNews NFX_GUARDED_BY(ChangeLock);   // empty once the owner has gone
    std::function<void()> OnHangUp NFX_GUARDED_BY(ChangeLock); // likewise
    std::deque<std::string> Lines NFX_GUARDED_BY(ChangeLock);
    bool HasEnded NFX_GUARDED_BY(ChangeLock) = false;
};

LineInput::LineInput(std::function<void()> onNews, std::function<void()> onHangUp)
    : state(std::make_shared<State>())
{
    DropTyped();
    {
        const Lock guard(state->ChangeLock);
        state->OnNews = std::move(onNews);
        state->OnHangUp = std::move(onHangUp);
    }
    std::thread([state = state] {
        Process::ReadInput([&state](const std::string& line) {
            const Lock guard(state->ChangeLock);
            state->Lines.push_back(line);
            State::Tell(state->OnNews);
        });
        const Lock guard(state->ChangeLock);
        state->HasEnded = !HasHungUp();
        State::Tell(state->HasEnded ? state->OnNews : state->OnHangUp);
    }).detach();
}

LineInput::~LineInput()
{
    const Lock guard(state->ChangeLock);
    state->OnNews = {};
    state->OnHangUp = {};
}

bool LineInput::IsYes(std::string answer)
{
    std::ranges::transform(answer, answer.begin(), [](unsigned char each) { return std::tolower(each); });
    return answer == "y" || answer == "yes";
}

void LineInput::Drop()
{
    DropTyped();
    const Lock guard(state->ChangeLock);
    state->Lines.clear();
}

std::optional<std::string> LineInput::Take()
{
    const Lock guard(state->ChangeLock);
    if (state->Lines.empty())
    {
        return std::nullopt;
    }
    std::string line = std::move(state->Lines.front());
    state->Lines.pop_front();
    return line;
}

bool LineInput::HasEnded() const
{
    const Lock guard(state->ChangeLock);
    return state->HasEnded && state->Lines.empty();
}
} // namespace Zent::Discovery::Console
