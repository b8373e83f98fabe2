#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <ratio>
#include <string>
#include <utility>
#include <vector>

namespace Zent::Discovery::Agent
{
/// A TOML file of settings. Each operation puts a setting into its place when the file has it, and says whether it had;
/// all throw Programs::WrongArgument with file, line and column when it is of another kind or out of range.
class SettingsFile final
{
public:
    /// Throws std::exception with the reason when the text is not right.
    using CheckText = std::function<void(const std::string& text)>;

    template <class T>
    using Choices = std::vector<std::pair<std::string, T>>;

    /// @throws Programs::WrongArgument when the file cannot be read or is no TOML.
    explicit SettingsFile(const std::string& path);
    ~SettingsFile();

    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Sections without a name are the file itself.
    bool Text(const char* section, const char* name, std::string& value, const CheckText& check = {});
    void Texts(const char* section, const char* name, std::vector<std::string>& value, const CheckText& check = {});
    void Flag(const char* section, const char* name, bool& value);

    void Number(const char* section, const char* name, std::uint16_t& value, std::int64_t least, std::int64_t most)
    {
        value = static_cast<std::uint16_t>(WholeNumber(section, name, value, least, most));
    }

    /// In seconds, whatever the value counts in.
    template <class TPeriod>
    void Number(const char* section,
                const char* name,
                std::chrono::duration<std::int64_t, TPeriod>& value,
                std::int64_t least,
                std::int64_t most)
    {
        const auto before = std::chrono::duration_cast<std::chrono::seconds>(value).count();
        value = std::chrono::seconds(WholeNumber(section, name, before, least, most));
    }

    template <class T>
    void Choice(const char* section, const char* name, T& value, const Choices<T>& choices)
    {
        std::vector<std::string> names;
        for (const auto& each : choices)
        {
            names.push_back(each.first);
        }
        if (const int index = ChosenOf(section, name, names); index >= 0)
        {
            value = choices[static_cast<std::size_t>(index)].second;
        }
    }

    /// Settings that nobody has asked for are spelled wrong.
    void RefuseOthers();

private:
    class Document;

    std::int64_t WholeNumber(
        const char* section, const char* name, std::int64_t usual, std::int64_t least, std::int64_t most);
    int ChosenOf(const char* section, const char* name, const std::vector<std::string>& names);

    const std::unique_ptr<Document> document;
};
} // namespace Zent::Discovery::Agent
