#include "Inventory/Journal.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Zent::Discovery::Inventory;

namespace
{
/// A change of press-4's name at that second.
JournalEntry Rename(int second, const std::string& before, const std::string& after, const std::string& undoes = "")
{
    return {.Time = "2026-01-02T03:04:0" + std::to_string(second) + "Z",
            .MACAddress = "02:00:00:00:00:01",
            .Before = R"({"HostName":")" + before + "\"}",
            .After = R"({"HostName":")" + after + "\"}",
            .Undoes = undoes};
}

TEST(JournalTest, UndoTakesBackOneChangeAfterTheOther)
{
    const JournalEntry first = Rename(1, "a", "b\\\"\xFF"); // names need not be valid UTF-8
    JournalEntry second = Rename(2, "b", "c");
    second.IPAddress = "10.2.0.5"; // behind a router
    const JournalEntry refused = Rename(3, "c", "d");
    Journal journal;
    for (const JournalEntry& entry : {first, second, refused, refused}) // the last one by two consoles at once
    {
        journal.Feed(Journal::BeginLine(entry));
    }
    EXPECT_EQ(journal.OpenEntries().size(), 4u);
    journal.Feed(Journal::EndLine(refused, "refused"));
    journal.Feed(Journal::EndLine(first, "applied"));
    journal.Feed(Journal::EndLine(second, "no-answer"));
    journal.Feed(Journal::EndLine(refused, "refused"));
    EXPECT_TRUE(journal.OpenEntries().empty());
    EXPECT_EQ(journal.Entries().front().After, first.After);

    ASSERT_EQ(journal.NewestToUndo().size(), 1u);
    EXPECT_EQ(journal.NewestToUndo().front()->UndoingRequest(), R"({"IPAddress":"10.2.0.5","HostName":"b"})");
    EXPECT_EQ(first.UndoingRequest(), R"({"MACAddress":"02:00:00:00:00:01","HostName":"a"})");
    EXPECT_TRUE(journal.NewestToUndo("02:00:00:00:00:02").empty());

    const JournalEntry inVain = Rename(4, "c", "b", second.Id());
    const JournalEntry brokenOff = Rename(5, "c", "b", second.Id());
    const JournalEntry undoing = Rename(6, "c", "b", second.Id());
    journal.Feed(Journal::BeginLine(inVain));
    journal.Feed(Journal::EndLine(inVain, "no-answer"));
    EXPECT_EQ(journal.NewestToUndo().front()->Time, second.Time);
    journal.Feed(Journal::BeginLine(brokenOff));
    EXPECT_EQ(journal.OpenEntries().size(), 1u);
    journal.Feed(Journal::BeginLine(undoing));
    journal.Feed(Journal::EndLine(undoing, "applied"));
    EXPECT_EQ(journal.NewestToUndo().front()->Time, first.Time);
    EXPECT_TRUE(journal.OpenEntries().empty());

    Journal again;
    for (const std::string& line : journal.Lines())
    {
        again.Feed(line);
    }
    EXPECT_EQ(again.Lines(), journal.Lines());
    EXPECT_EQ(again.NewestToUndo().front()->Time, first.Time);
}

TEST(JournalTest, AnExchangeIsTakenBackAsAWhole)
{
    const JournalEntry aside = Rename(1, "a", "swap"), other = Rename(2, "b", "a"), last = Rename(3, "swap", "b");
    const JournalEntry later = Rename(4, "b", "c");
    Journal journal;
    for (JournalEntry entry : {aside, other, last, later})
    {
        entry.MACAddress.back() = entry.Time == other.Time ? '2' : '1';
        entry.Exchange = entry.Time == later.Time ? "" : aside.Id();
        journal.Feed(Journal::BeginLine(entry));
        journal.Feed(Journal::EndLine(entry, "applied"));
    }
    EXPECT_EQ(journal.NewestToUndo().size(), 1u);
    std::string before;
    for (const JournalEntry* const entry : journal.NewestToUndo("02:00:00:00:00:02"))
    {
        before += entry->BeforeText() + ", ";
    }
    EXPECT_EQ(before, R"(the name "swap", the name "b", the name "a", )");
    EXPECT_TRUE(journal.NewestToJson("02:00:00:00:00:02")
                    .ends_with(R"("Request":{"MACAddress":"02:00:00:00:00:02","HostName":"b"}})"));
}

TEST(JournalTest, RefusesBrokenLinesAndKeepsTheRest)
{
    const std::string line = Journal::BeginLine(Rename(1, "a", "b"));
    Journal journal;
    journal.Feed(line);
    for (const std::string& broken : {line.substr(0, line.size() / 2), std::string("{}"), std::string("[1]"),
                                      std::string(16, '\0'), R"({"Time":"now","After":"b"})" + std::string()})
    {
        SCOPED_TRACE(broken);
        EXPECT_THROW(journal.Feed(broken), std::invalid_argument);
    }
    journal.Feed("");
    journal.Feed(R"({"Ended":"of another time","Verdict":"applied"})");
    EXPECT_EQ(journal.Lines(), std::vector{line});
}

TEST(JournalTest, TheOldestGoFirstAndOpenOnesLast)
{
    const JournalEntry open = Rename(0, "a", std::string(1000, 'x'));
    Journal journal;
    journal.Feed(Journal::BeginLine(open));
    for (int i = 0; i < 600; ++i)
    {
        JournalEntry entry = open;
        entry.Time = std::to_string(i);
        journal.Feed(Journal::BeginLine(entry));
        journal.Feed(Journal::EndLine(entry, "applied"));
    }
    std::size_t size = 0;
    for (const std::string& line : journal.Lines())
    {
        size += line.size() + 1;
    }
    EXPECT_LE(size, Journal::MaximumBytes + 100); // the last one has ended since
    EXPECT_GT(size, Journal::MaximumBytes - 2000);
    EXPECT_EQ(journal.Entries().front().Time, open.Time);
    EXPECT_EQ(journal.Entries().back().Time, "599");
}
} // namespace
