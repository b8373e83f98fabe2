#pragma once

namespace Zent::Discovery::Console
{
/// What a text means to the reader; Colours gives it its look.
enum class Style
{
    Plain,
    Title,
    Appeared,
    Changed,
    Left,
    Faint
};
} // namespace Zent::Discovery::Console
