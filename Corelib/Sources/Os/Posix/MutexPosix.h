#pragma once

#include "Os/IMutex.h"

namespace Nfx::Os
{
class MutexPosix final : public IMutex
{
public:
    bool Close(ObjectHandle mutex) override;
    bool Create(ObjectHandle& mutex, bool initiallyOwned, std::string_view name, CreateStatus& status) override;
    bool Open(ObjectHandle& mutex, std::string_view name) override;
    bool Release(ObjectHandle mutex, ReleaseStatus& status) override;
    bool Wait(ObjectHandle mutex, std::int32_t timeout) override;
};
} // namespace Nfx::Os
