#include "support/TemporaryFolder.h"
#include "system/IO/FileStream.h"
#include "system/IO/Path.h"
#include "system/String.h"

#include <gtest/gtest.h>

using namespace Nfx::System;
using namespace Nfx::System::IO;

TEST(PathW32Test, RootsOfDrivesAndSharesAreNeverTakenApart)
{
    const char* const cases[][3] = {{R"(C:\a\b.log)", R"(C:\a)", "b.log"},
                                    {R"(C:\b.log)", R"(C:\)", "b.log"},
                                    {R"(C:/a\b.log)", "C:/a", "b.log"},
                                    {R"(C:b.log)", "C:", "b.log"},
                                    {R"(C:\)", "", ""},
                                    {R"(\\server\share\a\b.log)", R"(\\server\share\a)", "b.log"},
                                    {R"(\\server\share\b.log)", R"(\\server\share\)", "b.log"},
                                    {R"(\\server\share)", "", ""},
                                    {R"(\\?\C:\b.log)", R"(\\?\C:\)", "b.log"},
                                    {R"(\\?\UNC\server\share\b.log)", R"(\\?\UNC\server\share\)", "b.log"}};
    for (const auto& [path, folder, name] : cases)
    {
        SCOPED_TRACE(path);
        EXPECT_STREQ(Path::GetDirectoryName(path).CString(), folder);
        EXPECT_STREQ(Path::GetFileName(path).CString(), name);
    }
}

TEST(PathW32Test, NamesAreUtf8OrElseInTheAnsiCodePage)
{
    const Tests::TemporaryFolder folder;
    std::uintmax_t written = 0;
    for (const char* name :
         {"caf\xC3\xA9.log", "caf\xE9.log"}) // the second is no UTF-8, but the same in code page 1252
    {
        const String path = Path::GetFullPath(String(folder.PathOf("").c_str()) + name);
        FileStream(path).Write("x");
        EXPECT_EQ(Path::GetFileName(path), "caf\xC3\xA9.log");
        EXPECT_EQ(std::filesystem::file_size(std::filesystem::path(folder.Path()) / u8"caf\u00E9.log"), ++written);
    }
}
