#pragma once

#include "system/IO/Stream.h"
#include "system/Object.h"
#include "system/SmartPointer.h"

#include <string>
#include <string_view>

namespace Nfx::System::IO
{
/// Writes whole texts to a stream that may fail now and then: of a text that was taken in part the writer keeps the
/// rest, and nothing else is written before it. One thread at a time.
class StreamWriter final : public Object
{
public:
    /// @throws ArgumentNullException when stream is null.
    explicit StreamWriter(const SmartPointer<Stream>& stream);

    /// True when the text was written, at least its beginning; false when nothing of it was written or kept.
    bool TryWrite(std::string_view text);

    /// Writes the text now or, when the stream fails, before everything else later.
    void Write(std::string_view text);

    /// True when nothing is kept any more.
    bool TryFlush();

    /// The text, from its beginning, that the stream has taken only in part; empty when it took all.
    const std::string& GetUnfinishedText() const noexcept { return unfinished; }

    /// Drops what is kept and closes the stream.
    void Close();

private:
    const SmartPointer<Stream> stream;
    std::string unfinished;
    std::size_t taken = 0; // of the unfinished text
};
} // namespace Nfx::System::IO
