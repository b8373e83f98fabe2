#include "SettingsFile.h"

#include "Programs/WrongArgument.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <set>
#include <sstream>
#include <system_error>
#include <toml++/toml.h>

using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Agent
{
namespace
{
std::string ReadAll(const std::string& path)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file || !text)
    {
        throw WrongArgument("cannot read \"" + path +
                            "\": " + (errno == 0 ? "it is empty" : std::generic_category().message(errno)));
    }
    return text.str();
}
} // namespace

class SettingsFile::Document final
{
public:
    explicit Document(const std::string& path)
        : path(path)
    {
        try
        {
            root = toml::parse(ReadAll(path), path);
        }
        catch (const toml::parse_error& error)
        {
            Refuse(error.source().begin, std::string(error.description()));
        }
    }

    /// Null when the file does not have it.
    const toml::node* Find(const char* section, const char* name)
    {
        const std::string place(section);
        known.insert(place.empty() ? name : place + "." + name);
        const toml::table* table = &root;
        if (!place.empty())
        {
            known.insert(place);
            const toml::node* const node = root.get(place);
            if (node == nullptr)
            {
                return nullptr;
            }
            table = node->as_table();
            if (table == nullptr)
            {
                Refuse(*node, place + " is no table");
            }
        }
        return table->get(name);
    }

    void RefuseOthersIn(const toml::table& table, const std::string& prefix)
    {
        for (const auto& [key, node] : table)
        {
            const std::string name = prefix + std::string(key.str());
            if (!known.contains(name))
            {
                Refuse(key.source().begin, "unknown setting \"" + name + '"');
            }
            if (node.is_table())
            {
                RefuseOthersIn(*node.as_table(), name + ".");
            }
        }
    }

    std::string CheckedText(const toml::node& node, const char* name, const CheckText& check) const
    {
        const std::string& text = node.as_string()->get();
        try
        {
            if (check)
            {
                check(text);
            }
        }
        catch (const std::exception& error)
        {
            Refuse(node, std::string(name) + ": " + error.what());
        }
        return text;
    }

    const toml::table& Root() const { return root; }

    [[noreturn]] void Refuse(const toml::source_position& place, const std::string& reason) const
    {
        throw WrongArgument(path + ": line " + std::to_string(place.line) + ", column " + std::to_string(place.column) +
                            ": " + reason);
    }

    [[noreturn]] void Refuse(const toml::node& node, const std::string& reason) const
    {
        Refuse(node.source().begin, reason);
    }

private:
    const std::string path;
    toml::table root;
    std::set<std::string> known;
};

SettingsFile::SettingsFile(const std::string& path)
    : document(std::make_unique<Document>(path))
{
}

SettingsFile::~SettingsFile() = default;

bool SettingsFile::Text(const char* section, const char* name, std::string& value, const CheckText& check)
{
    const toml::node* const node = document->Find(section, name);
    if (node == nullptr)
    {
        return false;
    }
    if (!node->is_string())
    {
        document->Refuse(*node, std::string(name) + " is no text");
    }
    value = document->CheckedText(*node, name, check);
    return true;
}

void SettingsFile::Texts(const char* section, const char* name, std::vector<std::string>& value, const CheckText& check)
{
    const toml::node* const node = document->Find(section, name);
    if (node == nullptr)
    {
        return;
    }
    std::vector<std::string> texts;
    if (!node->is_array())
    {
        document->Refuse(*node, std::string(name) + " is no list of texts");
    }
    for (const toml::node& each : *node->as_array())
    {
        if (!each.is_string())
        {
            document->Refuse(each, std::string(name) + " has an element that is no text");
        }
        texts.push_back(document->CheckedText(each, name, check));
    }
    value = std::move(texts);
}

void SettingsFile::Flag(const char* section, const char* name, bool& value)
{
    const toml::node* const node = document->Find(section, name);
    if (node != nullptr && !node->is_boolean())
    {
        document->Refuse(*node, std::string(name) + " is neither true nor false");
    }
    value = node == nullptr ? value : node->as_boolean()->get();
}

void SettingsFile::RefuseOthers()
{
    document->RefuseOthersIn(document->Root(), "");
}

std::int64_t SettingsFile::WholeNumber(
    const char* section, const char* name, std::int64_t usual, std::int64_t least, std::int64_t most)
{
    const toml::node* const node = document->Find(section, name);
    if (node == nullptr)
    {
        return usual;
    }
    const std::int64_t number = node->is_integer() ? node->as_integer()->get() : least - 1;
    if (number < least || number > most)
    {
        document->Refuse(*node, std::string(name) + " is no whole number from " + std::to_string(least) + " to " +
                                    std::to_string(most));
    }
    return number;
}

/// Which of the names it is, or -1 when the file does not have it.
int SettingsFile::ChosenOf(const char* section, const char* name, const std::vector<std::string>& names)
{
    std::string text;
    if (!Text(section, name, text))
    {
        return -1;
    }
    const auto found = std::ranges::find(names, text);
    if (found == names.end())
    {
        std::string list;
        for (const std::string& each : names)
        {
            list += (list.empty() ? "" : ", ") + each;
        }
        document->Refuse(*document->Find(section, name), '"' + text + "\" is none of " + list);
    }
    return static_cast<int>(found - names.begin());
}
} // namespace Zent::Discovery::Agent
