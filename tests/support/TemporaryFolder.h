#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace Tests
{
/// A new, empty folder that goes with the object, and what tests do with the files in it.
class TemporaryFolder final
{
public:
    TemporaryFolder()
        : path(UnusedPath())
    {
        std::filesystem::create_directories(path);
    }

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string Path() const { return path.string(); }

    std::string PathOf(const std::string& name) const { return (path / name).string(); }

    std::string Read(const std::string& name) const
    {
        std::ifstream file(path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    /// The lines of a text file without what ends them.
    std::vector<std::string> ReadLines(const std::string& name) const
    {
        std::ifstream file(path / name, std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);)
        {
            if (line.ends_with('\r'))
            {
                line.pop_back();
            }
            lines.push_back(line);
        }
        return lines;
    }

    /// How often a text occurs in a file.
    int CountIn(const std::string& name, std::string_view text) const
    {
        const std::string file = Read(name);
        int count = 0;
        for (std::size_t at = file.find(text); at != std::string::npos; at = file.find(text, at + 1))
        {
            ++count;
        }
        return count;
    }

    /// How often a text occurs in all files.
    int Count(std::string_view text) const
    {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(path))
        {
            count += CountIn(entry.path().filename().string(), text);
        }
        return count;
    }

    void Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path / name, std::ios::binary) << text;
    }

private:
    static std::filesystem::path UnusedPath()
    {
        const std::filesystem::path parent = std::filesystem::temp_directory_path();
        long long number = std::chrono::steady_clock::now().time_since_epoch().count();
        while (std::filesystem::exists(parent / ("discovery-tests-" + std::to_string(number))))
        {
            ++number;
        }
        return parent / ("discovery-tests-" + std::to_string(number));
    }

    const std::filesystem::path path;
};
} // namespace Tests
