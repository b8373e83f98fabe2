#pragma once

#include "Commands/ChangeSettings.h"
#include "Commands/ExitStatus.h"
#include "Inventory/ChangeReport.h"
#include "Inventory/ChangeRequest.h"
#include "Inventory/Journal.h"
#include "Programs/SessionDriver.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
class CommandContext;
class LineInput;

/// Changes devices as the user wants it: looks who is there, checks, shows and asks, sends, finds out what has come of
/// it, keeps the journal, and takes back what must not stay. Main thread only.
class ChangeRun final
{
public:
    struct Wanted
    {
        Inventory::ChangeRequest Request;
        std::string Undoes = {};  // the Id of the journal's entry that it takes back; then it is right whatever it is
        std::size_t Exchange = 0; // the same for all of one exchange, which are taken back together; 0 for no exchange
    };

    /// How to go about it.
    struct Manner
    {
        bool Looks = false;       // who is there, as Look does
        bool OneByOne = false;    // up to the first that fails, each checked at its turn; else all or none, and at once
        bool Asks = false;        // whoever sits at the terminal
        bool NeedsAnswer = false; // where nobody sits there, the user must have said yes
        std::optional<std::chrono::milliseconds> Confirm = {}; // takes all back unless it is confirmed in that time
    };

    /// Starts the library. All must outlive the object.
    /// @throws std::runtime_error when it cannot be loaded or refuses.
    ChangeRun(CommandContext& context, const ChangeSettings& settings);
    ~ChangeRun();

    ChangeRun(const ChangeRun&) = delete;
    ChangeRun& operator=(const ChangeRun&) = delete;

    /// Searches for devices, unless the user wants no look. False once the user has interrupted.
    bool Look();

    /// What is known of the devices at this moment.
    const Inventory::DeviceTable& Devices() const { return driver.Session().Devices(); }

    /// Carries out what is wanted, in normal form, and tells the user what has come of it.
    /// @throws std::runtime_error when the journal that the user has chosen cannot be written, or the library refuses.
    ExitStatus CarryOut(const std::vector<Wanted>& plan, const Manner& manner);

private:
    /// A change on its way through the run.
    struct Step : Wanted
    {
        Inventory::ChangeReport Report;
        std::optional<Inventory::JournalEntry> Entry = {};     // once it is sent
        std::optional<Inventory::ChangeReport> TakenBack = {}; // what has come of that
    };

    using Steps = std::vector<Step>;

    bool Acquaint(const Steps& steps);
    bool CheckValues(Steps& steps) const;
    bool Check(Steps& steps, const Manner& manner) const;
    static bool IsAllAllowed(Steps& steps);
    void ShowPlan(const Steps& steps) const;
    ExitStatus Ask(const Steps& steps, const Manner& manner);
    bool Change(std::span<Step> steps);
    bool ChangeOneByOne(Steps& steps);
    void Note(Step& step, const Inventory::ChangeReport& report);
    void EndEntries(std::span<const Step> steps);
    bool IsConfirmed(std::chrono::milliseconds time);
    void TakeBack(Steps& steps);
    void Tell(const Steps& steps) const;
    void Tell(const Step& step) const;

    bool Await(const std::function<bool()>& isOver, const std::function<std::string()>& status);
    LineInput& Input();
    Inventory::ChangeOptions OptionsFor(const Step& step) const;

    CommandContext& context;
    const ChangeSettings& settings;
    const std::chrono::milliseconds timeout;
    bool hasLooked = false;
    bool isOnTrial = false;                       // what is sent stays open in the journal until the user has confirmed
    bool isTidyingUp = false;                     // interruptions no longer count
    std::map<std::size_t, std::string> exchanges; // the Ids of their first entries
    Programs::SessionDriver driver;
    std::unique_ptr<LineInput> input; // made for the first question
};
} // namespace Zent::Discovery::Console
