#include "Os/DirectoryFaulty.h"

#include "Os/Faults.h"

namespace Tests
{
using Nfx::Os::FileFailure;
using Nfx::Os::FileResult;

FileResult DirectoryFaulty::Create(const Nfx::System::String& path)
{
    FileResult result{FileFailure::Other, 0};
    return Faults::Strikes(Call::CreateFolder, result.NativeError) ? result : real.Create(path);
}
} // namespace Tests
