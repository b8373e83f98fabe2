#pragma once

#include "system/Object.h"

#include <compare>
#include <string>
#include <string_view>
#include <utility>

namespace Nfx::System
{
class StringSplitOptions;

namespace Collections::Generic
{
template <class T>
class List;
}

/// 8-bit text, one character per byte. Bytes are never interpreted: UTF-8 and invalid UTF-8 pass unchanged.
class String final : public Object
{
public:
    String() noexcept = default;

    /// Copies NUL-terminated text.
    /// @throws ArgumentNullException when text is null.
    String(const char* text);

    /// Copies length bytes, which may hold NUL.
    String(const char* text, std::size_t length)
        : text(text, length)
    {
    }

    explicit String(std::string_view text)
        : text(text)
    {
    }

    explicit String(std::string&& text) noexcept
        : text(std::move(text))
    {
    }

    /// True when the other object is a String of the same bytes.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;
    String ToString() const override;

    std::size_t Length() const noexcept { return text.size(); }

    bool IsEmpty() const noexcept { return text.empty(); }

    /// NUL-terminated; valid until the string changes.
    const char* CString() const noexcept { return text.c_str(); }

    std::string_view View() const noexcept { return text; }

    String& Append(std::string_view part)
    {
        text.append(part);
        return *this;
    }

    String& Append(char character)
    {
        text.push_back(character);
        return *this;
    }

    String& operator+=(const String& part) { return Append(part.View()); }

    String& operator+=(const char* part) { return Append(std::string_view(part)); }

    void Clear() noexcept { text.clear(); }

    void Reserve(std::size_t length) { text.reserve(length); }

    /// Byte-wise order: negative, zero or positive.
    int CompareTo(const String& other) const noexcept { return text.compare(other.text); }

    /// The text in quotation marks, for a message that says what is wrong with it. Cut after 64 bytes: such texts come
    /// from others.
    String Quoted() const { return Quoted(View()); }

    static String Quoted(std::string_view text);

    /// The parts between separators, in order; n separators give n + 1 parts unless empty ones are removed.
    Collections::Generic::List<String> Split(char separator, const StringSplitOptions& options) const;

    friend bool operator==(const String& left, const String& right) noexcept { return left.text == right.text; }

    friend bool operator==(const String& left, const char* right) noexcept { return left.text == right; }

    friend std::strong_ordering operator<=>(const String& left, const String& right) noexcept
    {
        return left.text <=> right.text;
    }

    friend String operator+(String left, const String& right)
    {
        left.Append(right.View());
        return left;
    }

    friend String operator+(String left, const char* right)
    {
        left.Append(std::string_view(right));
        return left;
    }

    friend String operator+(const char* left, const String& right) { return String(left) + right; }

private:
    std::string text;
};
} // namespace Nfx::System
