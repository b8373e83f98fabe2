#pragma once

#include "Inventory/Device.h"
#include "Show/DeviceTextTable.h"
#include "Show/StatusLine.h"
#include "Text/Colours.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Console
{
/// What the user sees: devices as a table or as JSON documents on one stream, complaints and what is going on on
/// another.
class Output final
{
public:
    struct Settings
    {
        bool Json = false;                         // one document per line instead of a table
        bool Csv = false;                          // comma-separated values instead of one
        bool OutIsTerminal = false;                // which acts on control sequences
        bool ErrorsAreTerminal = false;            // the same
        bool HasColours = true;                    // what goes to a terminal
        std::size_t Width = TextTable::NoLimit;    // of tables
        const char* Program = "discovery-console"; // that complains; a literal
    };

    /// The streams must outlive the object.
    Output(std::ostream& out, std::ostream& errors, const Settings& settings);

    bool IsJson() const;
    bool IsCsv() const;

    /// How to colour what goes to the stream of devices.
    const Colours& OutColours() const;

    /// Shows devices, with titles above them even if there are none.
    void Show(const std::vector<const Inventory::Device*>& devices);
    void Show(const Inventory::Device& device);
    void Show(const DeviceTextTable& table);
    void Show(const TextTable& table);

    /// Shows a message at the moment it comes.
    /// False when the stream takes no more, because its reader has gone.
    bool ShowNow(const Inventory::Device& device);

    /// What a document says of the message, which the library's does not hold: "Message":"Bye","Time":"...".
    static std::string MembersOf(const Inventory::Device& device);

    /// One document for scripts: members, such as "Change":"Left", and then those of the library's document.
    static std::string DocumentOf(const std::string& members, const Inventory::Device& device);
    void PrintDocument(const std::string& members, const Inventory::Device& device);

    /// One row of comma-separated values, which may come from outside. The first one is preceded by the titles.
    void PrintRow(const std::vector<std::string>& titles, const std::vector<std::string>& cells);

    /// One line, as it is.
    void PrintLine(const std::string& line);

    /// Writes what is still held back. False, after a complaint, when not everything could be written; a reader that
    /// has gone is none the wiser, so that costs no complaint.
    bool Finish();

    /// Says what is going on until something else is said; only a terminal shows it.
    void ShowStatus(const std::string& text);

    /// Asks the user something, whose answer is going to stand behind it. The text must be fit for a terminal.
    void Ask(const std::string& question);

    /// Sums up for people: scripts, which read documents, are spared it. The text must be fit for a terminal.
    void Conclude(const std::string& text);

    /// Reports what went wrong. The text may hold text from outside.
    void Complain(std::string_view text);

private:
    bool PrintRecord(const Inventory::Device& device);
    void PrintTitles(const std::vector<std::string>& titles);
    bool Flush();
    void NoteFailure();

    std::ostream& out;
    std::ostream& errors;
    const Settings settings;
    const Colours outColours;
    const Colours errorColours;
    StatusLine status;
    bool hasTitles = false;
    int writeError = 0; // the system's number for what first kept something from being written
};
} // namespace Zent::Discovery::Console
