#include "AnswerStream.h"

#include "SharedModel.h"

#include <algorithm>

namespace Zent::Discovery::Page
{
std::optional<std::size_t> AnswerStream::Read(char* buffer, std::size_t size, Time now)
{
    if (taken == piece.size())
    {
        std::optional<std::string> next = Next(now);
        if (!next)
        {
            return std::nullopt;
        }
        piece = std::move(*next);
        taken = 0;
    }
    const std::size_t length = piece.copy(buffer, size, taken);
    taken += length;
    return length;
}

std::optional<std::string> DevicesStream::Next(Time /*now*/)
{
    std::string piece = model.With([this](const PageModel& each) {
        return each.NextPiece(snapshot, PieceBytes, std::chrono::system_clock::now());
    });
    return piece.empty() ? std::nullopt : std::optional(std::move(piece));
}

EventStream::EventStream(SharedModel& model, std::optional<PageModel::Position> from, Time now)
    : model(model)
    , position(from)
    , nextComment(now)
{
}

std::optional<std::string> EventStream::Next(Time now)
{
    std::string text = model.With([this](const PageModel& each) {
        if (!position)
        {
            position = each.Newest();
            return each.ResetEvent();
        }
        return each.EventsAfter(*position, PieceBytes);
    });
    if (text.empty() && now >= nextComment)
    {
        text = ":\n\n";
    }
    if (!text.empty())
    {
        nextComment = now + CommentInterval;
    }
    return text;
}
} // namespace Zent::Discovery::Page
