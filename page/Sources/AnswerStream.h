#pragma once

#include "Page/PageModel.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace Zent::Discovery::Page
{
class SharedModel;

/// An answer that is made as fast as the viewer takes it, so that not more than a piece of it is ever kept. The
/// server's thread.
class AnswerStream
{
public:
    using Time = PageModel::Time;

    static constexpr std::size_t PieceBytes = std::size_t{16} * 1024;

    AnswerStream() = default;
    AnswerStream(const AnswerStream&) = delete;
    AnswerStream& operator=(const AnswerStream&) = delete;
    virtual ~AnswerStream() = default;

    /// What comes next, so many bytes at most; empty when there is nothing at the moment, and nothing at all at the
    /// end.
    std::optional<std::size_t> Read(char* buffer, std::size_t size, Time now);

protected:
    /// The next piece, as Read gives it.
    virtual std::optional<std::string> Next(Time now) = 0;

private:
    std::string piece;
    std::size_t taken = 0; // of the piece
};

/// The document with everything.
class DevicesStream final : public AnswerStream
{
public:
    explicit DevicesStream(SharedModel& model)
        : model(model)
    {
    }

protected:
    std::optional<std::string> Next(Time now) override;

private:
    SharedModel& model;
    PageModel::Snapshot snapshot;
};

/// What changes, without an end.
class EventStream final : public AnswerStream
{
public:
    /// When nothing has changed for that long, a comment shows both sides that the connection lives.
    static constexpr std::chrono::seconds CommentInterval{15};

    /// Without a position the viewer is told to begin anew.
    EventStream(SharedModel& model, std::optional<PageModel::Position> from, Time now);

    Time NextComment() const { return nextComment; }

protected:
    std::optional<std::string> Next(Time now) override;

private:
    SharedModel& model;
    std::optional<PageModel::Position> position;
    Time nextComment;
};
} // namespace Zent::Discovery::Page
