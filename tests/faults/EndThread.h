#pragma once

namespace Tests
{
/// Ends the calling thread as the platform offers it to everybody, past the framework.
void EndThread();
} // namespace Tests
