#include "system/IO/Path.h"

#include "support/TemporaryFolder.h"
#include "system/Exceptions.h"
#include "system/IO/DirectoryInfo.h"

#include <gtest/gtest.h>

using namespace Nfx::System;
using namespace Nfx::System::IO;

TEST(PathTest, FolderAndNameAreTakenApartAtTheLastSeparator)
{
    const char* const cases[][3] = {
        {"", "", ""},         {"a", "", "a"},    {"a/b", "a", "b"}, {"/a", "/", "a"}, {"/a/b.c", "/a", "b.c"},
        {"/a//b", "/a", "b"}, {"/a/", "/a", ""}, {"/", "", ""}};
    for (const auto& [path, folder, name] : cases)
    {
        SCOPED_TRACE(path);
        EXPECT_STREQ(Path::GetDirectoryName(path).CString(), folder);
        EXPECT_STREQ(Path::GetFileName(path).CString(), name);
    }
}

TEST(DirectoryInfoTest, CreatesEveryMissingFolder)
{
    const Tests::TemporaryFolder folder;
    for (const char* path : {"a/b/c/d", "a/e//f/", "a"})
    {
        const DirectoryInfo directory(String((folder.Path() + "/" + path).c_str()));
        directory.Create();
        directory.Create();
        EXPECT_TRUE(directory.Exists());
        EXPECT_TRUE(std::filesystem::is_directory(folder.PathOf(path)));
    }
}

TEST(DirectoryInfoTest, FileInTheWayIsAnError)
{
    const Tests::TemporaryFolder folder;
    folder.Write("file", "");
    EXPECT_FALSE(DirectoryInfo(String(folder.PathOf("file").c_str())).Exists());
    EXPECT_THROW(DirectoryInfo(String(folder.PathOf("file").c_str())).Create(), IOException);
    EXPECT_THROW(DirectoryInfo(String(folder.PathOf("file/below").c_str())).Create(), IOException);
}
