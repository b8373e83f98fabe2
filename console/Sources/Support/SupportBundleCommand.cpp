#include "Support/SupportBundleCommand.h"

#include "Commands/Arguments.h"
#include "Commands/CommandContext.h"
#include "Doctor/Diagnosis.h"
#include "Doctor/DoctorCommand.h"
#include "Doctor/Examination.h"
#include "Programs/InterfaceChoice.h"
#include "Programs/PrivateFile.h"
#include "Programs/ProgramVersion.h"
#include "Programs/SystemNetwork.h"
#include "Programs/WrongArgument.h"
#include "Show/Output.h"
#include "Support/Pseudonyms.h"
#include "Terminal/HostPlatform.h"
#include "Text/TextFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>

using Zent::Discovery::Programs::NetworkInterface;
using Zent::Discovery::Programs::PrivateFile;
using Zent::Discovery::Programs::SystemNetwork;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Console
{
namespace
{
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using Files = std::vector<ZipArchive::File>;

fs::path PathOf(const std::string& text)
{
    return {std::u8string(text.begin(), text.end())};
}

std::string Versions(const ProgramOptions& options)
{
    return std::string("discovery-console ") + Programs::ProgramVersion + "\nlibrary " + options.Session.Library +
           "\nsystem " + HostPlatform::SystemVersion() + "\n";
}

std::string Interfaces(const std::vector<NetworkInterface>& interfaces)
{
    Json all = Json::array();
    for (const NetworkInterface& interface : interfaces)
    {
        Json addresses = Json::array();
        for (const Inventory::Network& network : interface.Addresses)
        {
            addresses.push_back(Inventory::Network::TextOf(network.Address) + '/' +
                                std::to_string(network.PrefixLength));
        }
        all.push_back({{"Name", interface.Name},
                       {"Addresses", addresses},
                       {"IsUp", interface.IsUp},
                       {"CanBroadcast", interface.CanBroadcast},
                       {"IsLoopback", interface.IsLoopback},
                       {"IsPointToPoint", interface.IsPointToPoint}});
    }
    return all.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

/// The end of a log, from the begin of a line on.
std::string End(const std::string& log)
{
    static constexpr std::size_t MaximumBytes = 8 * 1024 * 1024;
    if (log.size() <= MaximumBytes)
    {
        return log;
    }
    const std::size_t line = log.find('\n', log.size() - MaximumBytes);
    return log.substr(line == std::string::npos ? log.size() - MaximumBytes : line + 1);
}

/// A log and what the library has split from it when it grew too large.
void AddLog(Files& files, const std::string& path, const std::string& folder)
{
    for (const char* const suffix : {"", ".1.bak", ".2.bak", ".3.bak"})
    {
        const fs::path part = PathOf(path + suffix);
        std::error_code ignored;
        if (fs::is_regular_file(part, ignored))
        {
            const std::u8string name = part.filename().u8string();
            files.push_back({folder + std::string(name.begin(), name.end()), End(TextFile::Read(path + suffix))});
        }
    }
}

std::string Findings(const std::vector<Doctor::Finding>& findings)
{
    std::string text;
    for (const Doctor::Finding& finding : findings)
    {
        text += DoctorCommand::DocumentOf(finding) + '\n';
    }
    return text;
}

Pseudonyms Learned(const Files& files)
{
    Pseudonyms pseudonyms;
    for (const NetworkInterface& interface : SystemNetwork::Interfaces())
    {
        std::ranges::for_each(interface.Addresses, [&](const auto& network) { pseudonyms.LearnNetwork(network); });
    }
    for (const std::string& name : HostPlatform::OwnNames())
    {
        pseudonyms.LearnName(name);
    }
    for (const ZipArchive::File& file : files)
    {
        pseudonyms.Learn(file.Content);
        pseudonyms.Learn(file.Name);
    }
    return pseudonyms;
}

/// Another file takes its name once it is complete; no part of it remains when that fails.
class NewFile final
{
public:
    NewFile(const std::string& path, std::string_view content)
        : path(path)
        , part(PathOf(path + ".part"))
    {
        try
        {
            fs::remove(part);
            PrivateFile::Append(part, content);
        }
        catch (const std::system_error& error)
        {
            Discard();
            Refuse(error);
        }
    }

    ~NewFile() { Discard(); }

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void TakePlace()
    {
        try
        {
            fs::rename(part, PathOf(path));
        }
        catch (const std::system_error& error)
        {
            Refuse(error);
        }
    }

private:
    void Discard()
    {
        std::error_code ignored;
        fs::remove(part, ignored);
    }

    [[noreturn]] void Refuse(const std::system_error& error) const
    {
        throw std::runtime_error("cannot write " + path + ": " + error.code().message());
    }

    const std::string path;
    const fs::path part;
};
} // namespace

CLI::App& SupportBundleCommand::AddTo(CLI::App& parent)
{
    Arguments arguments(parent, "support-bundle", "pack logs, interfaces and findings for support, without names");
    arguments.Add("file", "TEXT", path, "the archive to make, such as support.zip").IsRequired();
    arguments.AddRepeated("--add", "FILE", logs, "a log of a host program to pack, too; may be repeated").MustBeFile();
    arguments.AddFlag("--plain", isPlain, "leave names and addresses as they are");
    arguments.AddFlag("--force", replaces, "replace files that are there already");
    return arguments.Command();
}

ExitStatus SupportBundleCommand::Run(CommandContext& context)
{
    RefuseExisting();
    std::optional<Files> files = Collect(context);
    if (!files)
    {
        return ExitStatus::Interrupted;
    }
    std::string map;
    if (!isPlain)
    {
        context.Out().ShowStatus("Replacing names and addresses");
        Pseudonyms pseudonyms = Learned(*files);
        for (ZipArchive::File& file : *files)
        {
            file = {pseudonyms.Replaced(file.Name), pseudonyms.Replaced(file.Content)};
        }
        map = pseudonyms.Map();
    }
    Write(*files, map);
    Json report = {{"Bundle", path}};
    for (const ZipArchive::File& file : *files)
    {
        report["Files"].push_back(file.Name);
        context.Out().Conclude(file.Name);
    }
    if (!isPlain)
    {
        report["Map"] = MapPath();
    }
    context.Out().PrintLine(context.Out().IsJson() ? report.dump(-1, ' ', false, Json::error_handler_t::replace)
                            : isPlain              ? path + " holds names and addresses as they are."
                                                   : path + " is ready to be sent. Keep " + MapPath() +
                                            ": it tells what the pseudonyms stand for.");
    return ExitStatus::Success;
}

std::string SupportBundleCommand::MapPath() const
{
    return path + ".names.json";
}

void SupportBundleCommand::RefuseExisting() const
{
    for (const std::string& file : {path, isPlain ? path : MapPath()})
    {
        std::error_code ignored;
        if (fs::is_directory(PathOf(file), ignored))
        {
            throw WrongArgument(file + " is a folder");
        }
        if (!replaces && fs::exists(PathOf(file), ignored))
        {
            throw WrongArgument(file + " is there already; --force replaces it");
        }
    }
}

std::optional<Files> SupportBundleCommand::Collect(CommandContext& context) const
{
    using namespace Doctor;
    const ProgramOptions& options = context.Options();
    Files files = {{"versions.txt", Versions(options)}, {"interfaces.json", Interfaces(SystemNetwork::Interfaces())}};
    AddLog(files, options.Session.LogFile, "logs/");
    for (std::size_t i = 0; i < logs.size(); ++i)
    {
        AddLog(files, logs[i], "logs/added-" + std::to_string(i + 1) + "/");
    }
    Observations observations = Examination::OfSystem(options);
    if (observations.HasInterface && !observations.IsPortTaken)
    {
        try
        {
            observations.Search = Examination::Search(context);
            if (!observations.Search)
            {
                return std::nullopt;
            }
            files.push_back({"search.log", End(observations.Search->LogText)});
            files.push_back({"devices.jsonl", observations.Search->Documents});
        }
        catch (const std::runtime_error& error) // a library that cannot be loaded is a case for support, too
        {
            context.Out().Complain(error.what());
            files.push_back({"search-failure.txt", std::string(error.what()) + '\n'});
        }
    }
    files.push_back({"doctor.jsonl", Findings(Diagnosis::Of(observations))});
    return files;
}

void SupportBundleCommand::Write(const Files& files, const std::string& map) const
{
    NewFile bundle(path, ZipArchive::Of(files));
    if (!isPlain)
    {
        NewFile(MapPath(), map).TakePlace();
    }
    bundle.TakePlace();
}
} // namespace Zent::Discovery::Console
