#include "Doctor/DoctorCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Doctor/Diagnosis.h"
#include "Doctor/Examination.h"
#include "Json/JSONStringer.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

#include <algorithm>
#include <optional>
#include <string_view>

using Zent::Utils::Json::JSONStringer;

namespace Zent::Discovery::Console
{
using namespace Doctor;

namespace
{
constexpr std::size_t CodeWidth = 15; // of the longest

struct Mark
{
    const char* Text;
    Style Look;
};

Mark MarkOf(Severity severity)
{
    switch (severity)
    {
    case Severity::Ok:
        return {"[ok]", Style::Appeared};
    case Severity::Error:
        return {"[x] ", Style::Left};
    case Severity::Note:
    case Severity::Warning:
        break;
    }
    return {"[!] ", Style::Changed};
}

template <class TTexts>
void WriteArray(JSONStringer& stringer, std::string_view key, const TTexts& texts)
{
    stringer.Key(key);
    stringer.Array();
    for (const auto& text : texts)
    {
        stringer.Value(std::string_view(text));
    }
    stringer.EndArray();
}

void WriteMember(JSONStringer& stringer, std::string_view key, std::string_view value)
{
    stringer.Key(key);
    stringer.Value(value);
}

std::string CheckDocument(const Check& check)
{
    JSONStringer stringer;
    stringer.Object();
    WriteMember(stringer, "Code", check.Code);
    WriteMember(stringer, "Severity", NameOf(check.HowBad));
    WriteMember(stringer, "Title", check.Title);
    WriteMember(stringer, "Affects", check.Affects);
    WriteArray(stringer, "DependsOn", check.DependsOn);
    stringer.EndObject();
    return std::string(stringer.ToString().View());
}

std::string LineOf(const Check& check)
{
    return TerminalText::Pad(check.Code, CodeWidth) + "  " + TerminalText::Pad(std::string(NameOf(check.HowBad)), 7) +
           "  " + check.Title + ": " + check.Affects;
}

std::string Codes()
{
    std::string codes;
    for (const Check& check : Check::All())
    {
        codes += (codes.empty() ? "" : ", ") + std::string(check.Code);
    }
    return codes;
}

ExitStatus List(Output& output)
{
    for (const Check& check : Check::All())
    {
        output.PrintLine(output.IsJson() ? CheckDocument(check) : LineOf(check));
    }
    return ExitStatus::Success;
}

ExitStatus StatusOf(Severity worst)
{
    switch (worst)
    {
    case Severity::Warning:
        return ExitStatus::Warnings;
    case Severity::Error:
        return ExitStatus::Errors;
    case Severity::Ok:
    case Severity::Note:
        break;
    }
    return ExitStatus::Success;
}
} // namespace

CLI::App& DoctorCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "doctor", "look for what keeps devices from being found");
    arguments.AddRepeated("--check", "CODE", codes, "make this check alone; may be repeated")
        .MustPass([](const std::string& code) {
            return Check::Find(code) != nullptr ? "" : '"' + code + "\" is not one of " + Codes();
        });
    arguments.AddFlag("--list", onlyLists, "show which checks there are, and make none");
    arguments.AddFlag("-v,--verbose", isVerbose, "show what each finding affects and which commands help");
    return arguments.Command();
}

std::string DoctorCommand::DocumentOf(const Finding& finding)
{
    JSONStringer stringer;
    stringer.Object();
    WriteMember(stringer, "Code", finding.Of->Code);
    WriteMember(stringer, "Severity", NameOf(finding.HowBad));
    WriteMember(stringer, "Title", finding.Of->Title);
    WriteMember(stringer, "Text", finding.Text);
    WriteMember(stringer, "Affects", finding.Of->Affects);
    WriteArray(stringer, "Commands", finding.Commands);
    stringer.EndObject();
    return std::string(stringer.ToString().View());
}

ExitStatus DoctorCommand::Run(CommandContext& context)
{
    Output& output = context.Out();
    if (onlyLists)
    {
        return List(output);
    }
    Observations observations = Examination::OfSystem(context.Options());
    if (NeedsSearch() && observations.HasInterface && !observations.IsPortTaken)
    {
        observations.Search = Examination::Search(context);
        if (!observations.Search)
        {
            return ExitStatus::Interrupted;
        }
    }
    const std::vector<Finding> findings = Diagnosis::Of(observations, codes);
    for (const Finding& finding : findings)
    {
        Show(finding, output);
    }
    return StatusOf(Diagnosis::WorstOf(findings));
}

bool DoctorCommand::NeedsSearch() const
{
    return codes.empty() ||
           std::ranges::any_of(codes, [](const std::string& code) { return Check::Find(code)->NeedsSearch; });
}

void DoctorCommand::Show(const Finding& finding, Output& output) const
{
    const bool isOk = finding.HowBad == Severity::Ok;
    if (output.IsJson())
    {
        if (!isOk || isVerbose)
        {
            output.PrintLine(TerminalText::Json(DocumentOf(finding)));
        }
        return;
    }
    const Mark mark = MarkOf(finding.HowBad);
    const std::string text = isOk ? finding.Of->Title : TerminalText::Plain(finding.Text);
    output.PrintLine(output.OutColours().Paint(mark.Text, mark.Look) + "  " +
                     TerminalText::Pad(finding.Of->Code, CodeWidth) + "  " +
                     (finding.HowBad == Severity::Note ? "note: " : "") + text);
    if (isOk || !isVerbose)
    {
        return;
    }
    output.PrintLine(std::string("      ") + finding.Of->Affects);
    for (const std::string& command : finding.Commands)
    {
        output.PrintLine("      $ " + TerminalText::Plain(command));
    }
}
} // namespace Zent::Discovery::Console
