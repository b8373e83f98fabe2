#pragma once

#include <functional>

namespace Tests
{
/// Runs the action on a thread whose stack has 256 KiB, as small as any thread of ours may have.
void RunOnSmallStack(const std::function<void()>& action);
} // namespace Tests
