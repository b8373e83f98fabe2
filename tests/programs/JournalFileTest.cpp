#include "Programs/JournalFile.h"

#include "support/RunOnThreads.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using namespace Zent::Discovery::Programs;
using Zent::Discovery::Inventory::Journal;
using Zent::Discovery::Inventory::JournalEntry;

namespace
{
JournalEntry Rename(const std::string& time, const std::string& name = "press")
{
    return {.Time = time, .MACAddress = "02:00:00:00:00:01", .After = R"({"HostName":")" + name + "\"}"};
}

TEST(JournalFileTest, ALineThatAPowerCutBrokeCostsNoOther)
{
    const Tests::TemporaryFolder folder;
    const JournalFile file(folder.PathOf("new/journal"));
    std::vector<std::string> complaints;
    const auto complain = [&complaints](const std::string& text) { complaints.push_back(text); };
    EXPECT_TRUE(file.Read(complain).Entries().empty());
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("new"))); // looking leaves nothing behind

    file.Append(Journal::BeginLine(Rename("1")));
    folder.Write("new/journal", folder.Read("new/journal") + R"({"Time":"2","MACAdd)");
    file.Append(Journal::BeginLine(Rename("3")));
    EXPECT_EQ(file.Read(complain).Entries().size(), 2u);
    ASSERT_EQ(complaints.size(), 1u);
    EXPECT_EQ(complaints[0].find(file.Path() + ": line 2 is broken and left out: "), 0u) << complaints[0];

    folder.Write("file", "");
    EXPECT_THROW(JournalFile(folder.PathOf("file/journal")).Append("{}"), std::runtime_error);
    EXPECT_THROW(JournalFile(folder.Path()).Read(complain), std::runtime_error);
}

TEST(JournalFileTest, WritersAtTheSameTimeLoseNothingWhenTheFileIsShortened)
{
    const Tests::TemporaryFolder folder;
    const std::string path = folder.PathOf("journal");
    JournalFile(path).Append(Journal::BeginLine(Rename("open")));
    std::filesystem::permissions(path, std::filesystem::perms::others_read, std::filesystem::perm_options::add);
    const std::filesystem::perms rights = std::filesystem::status(path).permissions();
    Tests::RunOnThreads(2, [&path](int thread) {
        const JournalFile file(path);
        for (int i = 0; i < 40; ++i)
        {
            const JournalEntry entry =
                Rename(std::to_string(thread) + "-" + std::to_string(i), std::string(20000, 'x'));
            file.Append(Journal::BeginLine(entry));
            file.Append(Journal::EndLine(entry, "applied"));
        }
    });
    EXPECT_LT(std::filesystem::file_size(path), JournalFile::MaximumBytes);
    EXPECT_EQ(std::filesystem::status(path).permissions(), rights);
    const Journal journal = JournalFile(path).Read([](const std::string& text) { ADD_FAILURE() << text; });
    ASSERT_EQ(journal.OpenEntries().size(), 1u);
    EXPECT_EQ(journal.OpenEntries().front()->Time, "open");
    for (const std::string writer : {"0-", "1-"})
    {
        int next = -1; // only the oldest are left out, and a writer that ended early has but those
        for (const JournalEntry& entry : journal.Entries())
        {
            if (entry.Time.starts_with(writer))
            {
                const int number = std::stoi(entry.Time.substr(writer.size()));
                EXPECT_TRUE(next == -1 || number == next) << entry.Time;
                next = number + 1;
            }
        }
        EXPECT_TRUE(next == -1 || next == 40) << writer << next;
    }
    EXPECT_TRUE(journal.Entries().back().Time.ends_with("-39"));

    std::filesystem::create_directories(path + ".new/in the way");
    JournalFile(path).Append(Journal::BeginLine(Rename("long", std::string(JournalFile::MaximumBytes, 'x'))));
    EXPECT_GT(std::filesystem::file_size(path), JournalFile::MaximumBytes);
}
} // namespace
