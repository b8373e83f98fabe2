#include "Text/TerminalText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using Zent::Discovery::Console::TerminalText;
using namespace std::string_view_literals;

namespace
{
struct TextCase
{
    std::string_view Text;
    std::string_view Plain;
    std::string_view Json;
};

const TextCase Cases[] = {
    {"press-4 \"a\\b\" ~", "press-4 \"a\\b\" ~", "press-4 \"a\\b\" ~"},
    {"Pr\xC3\xBC"
     "fstand \xE2\x82\xAC \xF0\x9F\x98\x80",
     "Pr\xC3\xBC"
     "fstand \xE2\x82\xAC \xF0\x9F\x98\x80",
     "Pr\xC3\xBC"
     "fstand \xE2\x82\xAC \xF0\x9F\x98\x80"},
    {"\x1B[31m\r\n\t\0\x7F"sv, "\\x1B[31m\\x0D\\x0A\\x09\\x00\\x7F", "\\u001b[31m\\u000d\\u000a\\u0009\\u0000\\u007f"},
    {"\xC2\x9B", "\\xC2\\x9B", "\\u009b"}, // a control sequence in one character
    {"\xE2\x80\xAE\xE2\x81\xA6", "\\xE2\\x80\\xAE\\xE2\\x81\\xA6", "\\u202e\\u2066"}, // turn the direction
    {"\x9B\xFF", "\\x9B\\xFF", "\\ufffd\\ufffd"},
    {"\xC3", "\\xC3", "\\ufffd"},                                                 // ends too early
    {"\xC3(", "\\xC3(", "\\ufffd("},                                              // does not go on
    {"\xC0\x9B", "\\xC0\\x9B", "\\ufffd\\ufffd"},                                 // longer than it need be
    {"\xED\xA0\x80", "\\xED\\xA0\\x80", "\\ufffd\\ufffd\\ufffd"},                 // a surrogate
    {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80", "\\ufffd\\ufffd\\ufffd\\ufffd"}, // beyond Unicode
};

TEST(TerminalTextTest, EscapesWhatATerminalActsOnAndKeepsTheRest)
{
    for (const TextCase& each : Cases)
    {
        SCOPED_TRACE(each.Plain);
        EXPECT_EQ(TerminalText::Plain(each.Text), each.Plain);
        EXPECT_EQ(TerminalText::Json(each.Text), each.Json);
    }
}

TEST(TerminalTextTest, TableTextsKeepToTheirColumns)
{
    EXPECT_EQ(TerminalText::Plain("e\u0301 \u0E01\u0E34"), "e\u0301 \u0E01\u0E34"); // marks on letters
    EXPECT_EQ(TerminalText::Plain("\u0301a"), "\\xCC\\x81"
                                              "a"); // on what comes before
    EXPECT_EQ(TerminalText::Plain("a\u0301\u0301\u0301\u0301\u0301"), "a\u0301\u0301\u0301\u0301\\xCC\\x81");
    EXPECT_EQ(TerminalText::Plain("\u2764\uFE0F"), "\u2764\\xEF\\xB8\\x8F");
    EXPECT_EQ(TerminalText::Json("\u2764\uFE0F\u0301"), "\u2764\uFE0F\u0301");
}

TEST(TerminalTextTest, MeasuresAndCutsByTheColumnsOfATerminal)
{
    for (const auto& [text, width] :
         {std::pair("abc", 3u), std::pair("\u00E4\u20AC", 2u), std::pair("\u65E5\u672C", 4u), std::pair("\uFF21", 2u),
          std::pair("\uD55C", 2u), std::pair("\U0001F600", 2u), std::pair("e\u0301", 1u),
          std::pair("\u1112\u1161\u11AB", 2u)})
    {
        EXPECT_EQ(TerminalText::Width(text), width) << text;
    }
    EXPECT_EQ(TerminalText::Shorten("\u65E5\u672C\u8A9E", 6), "\u65E5\u672C\u8A9E");
    EXPECT_EQ(TerminalText::Shorten("\u65E5\u672C\u8A9E", 5), "\u65E5...");
    EXPECT_EQ(TerminalText::Shorten("\u65E5\u672C\u8A9E", 4), "..."); // half a character does not fit
    EXPECT_EQ(TerminalText::Shorten("e\u0301abcd", 4), "e\u0301...");
    EXPECT_EQ(TerminalText::Pad("\u65E5", 3), "\u65E5 ");

    const std::string text = "\xC3\xA4\xC3\xB6\xC3\xBC\xE2\x82\xAC!";
    EXPECT_EQ(TerminalText::Pad(text, 7), text + "  ");
    EXPECT_EQ(TerminalText::Pad(text, 3), text);
    EXPECT_EQ(TerminalText::Shorten(text, 5), text);
    EXPECT_EQ(TerminalText::Shorten(text, 4), "\xC3\xA4...");
}
} // namespace
