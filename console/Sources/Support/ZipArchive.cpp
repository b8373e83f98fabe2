#include "Support/ZipArchive.h"

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <minizip/zip.h>
#include <stdexcept>
#include <utility>

namespace Zent::Discovery::Console
{
namespace
{
/// What the archive's writer takes for a file.
struct Memory
{
    std::string Bytes;
    std::size_t Place = 0;
};

Memory& MemoryOf(voidpf stream)
{
    return *static_cast<Memory*>(stream);
}

voidpf Open(voidpf memory, const void* /*name*/, int /*mode*/)
{
    return memory;
}

uLong Read(voidpf /*memory*/, voidpf stream, void* buffer, uLong size)
{
    Memory& memory = MemoryOf(stream);
    const std::size_t count = memory.Bytes.copy(static_cast<char*>(buffer), size, memory.Place);
    memory.Place += count;
    return static_cast<uLong>(count);
}

uLong Write(voidpf /*memory*/, voidpf stream, const void* buffer, uLong size)
{
    Memory& memory = MemoryOf(stream);
    const std::size_t overwritten = std::min<std::size_t>(size, memory.Bytes.size() - memory.Place);
    memory.Bytes.replace(memory.Place, overwritten, static_cast<const char*>(buffer), size);
    memory.Place += size;
    return size;
}

ZPOS64_T Tell(voidpf /*memory*/, voidpf stream)
{
    return MemoryOf(stream).Place;
}

long Seek(voidpf /*memory*/, voidpf stream, ZPOS64_T offset, int origin)
{
    Memory& memory = MemoryOf(stream);
    const std::size_t from = origin == ZLIB_FILEFUNC_SEEK_SET   ? 0
                             : origin == ZLIB_FILEFUNC_SEEK_CUR ? memory.Place
                                                                : memory.Bytes.size();
    const std::size_t place = from + static_cast<std::size_t>(offset);
    if (place > memory.Bytes.size())
    {
        return -1;
    }
    memory.Place = place;
    return 0;
}

int Succeed(voidpf /*memory*/, voidpf /*stream*/)
{
    return 0;
}

void Check(int result)
{
    if (result != ZIP_OK)
    {
        throw std::runtime_error("cannot make the archive: error " + std::to_string(result));
    }
}

zip_fileinfo Today()
{
    const std::time_t now = std::time(nullptr);
    const std::tm utc = *std::gmtime(&now); // NOLINT(concurrency-mt-unsafe): one thread makes archives
    zip_fileinfo information{};
    information.tmz_date = {static_cast<uInt>(utc.tm_sec),  static_cast<uInt>(utc.tm_min),
                            static_cast<uInt>(utc.tm_hour), static_cast<uInt>(utc.tm_mday),
                            static_cast<uInt>(utc.tm_mon),  static_cast<uInt>(utc.tm_year + 1900)};
    return information;
}

void Add(zipFile archive, const ZipArchive::File& file, const zip_fileinfo& information)
{
    Check(zipOpenNewFileInZip64(archive, file.Name.c_str(), &information, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                Z_DEFAULT_COMPRESSION, 0));
    Check(zipWriteInFileInZip(archive, file.Content.data(), static_cast<unsigned>(file.Content.size())));
    Check(zipCloseFileInZip(archive));
}
} // namespace

std::string ZipArchive::Of(const std::vector<File>& files)
{
    Memory memory;
    zlib_filefunc64_def functions{Open, Read, Write, Tell, Seek, Succeed, Succeed, &memory};
    const zipFile archive = zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &functions);
    if (archive == nullptr)
    {
        throw std::runtime_error("cannot make the archive");
    }
    try
    {
        const zip_fileinfo information = Today();
        for (const File& file : files)
        {
            Add(archive, file, information);
        }
    }
    catch (...)
    {
        zipClose(archive, nullptr);
        throw;
    }
    Check(zipClose(archive, nullptr));
    return std::move(memory.Bytes);
}
} // namespace Zent::Discovery::Console
