#include "Text/TextFile.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>

using Tests::TemporaryFolder;
using Zent::Discovery::Console::TextFile;
using namespace std::string_view_literals;

namespace
{
TEST(TextFileTest, ReadsWhatEditorsAndShellsWrite)
{
    const TemporaryFolder folder;
    for (const auto& [content, text] :
         {std::pair("plain\r\n"sv, "plain\r\n"sv), std::pair("\xEF\xBB\xBFmarked"sv, "marked"sv), std::pair(""sv, ""sv),
          std::pair("\xFF\xFE[\0\xFC\0\x2C\x4E\x3D\xD8\x00\xDE\x00\xD8]\0"sv,
                    "[\xC3\xBC\xE4\xB8\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD]"sv)})
    {
        SCOPED_TRACE(text);
        folder.Write("file", std::string(content));
        EXPECT_EQ(TextFile::Read(folder.PathOf("file")), text);
    }
}

TEST(TextFileTest, SaysWhyItCannotRead)
{
    const TemporaryFolder folder;
    for (const std::string& path : {folder.Path(), folder.PathOf("missing")})
    {
        try
        {
            TextFile::Read(path);
            FAIL();
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_TRUE(std::string(error.what()).starts_with("cannot read " + path + ": ")) << error.what();
        }
    }
}
} // namespace
