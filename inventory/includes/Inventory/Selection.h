#pragma once

#include "Inventory/Column.h"
#include "Inventory/Wildcard.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Which rows the user wants to see, and in which order.
template <class TColumn>
class Selection
{
public:
    using Row = typename TColumn::Row;
    using TimePoint = typename TColumn::TimePoint;

    /// How the text of a column is shown.
    using Show = std::string (*)(std::string_view text);

    /// Patterns are held against what show makes of a text, or against the text as it is without one.
    Selection(Show show, std::vector<TColumn> columns)
        : show(show)
        , columns(std::move(columns))
    {
    }

    /// All names, or all but one, for a message to the user.
    std::string ColumnNames(std::string_view without = {}) const
    {
        std::string names;
        std::string last;
        for (const TColumn& column : columns)
        {
            if (column.Name != without)
            {
                names += (names.empty() ? "" : ", ") + std::exchange(last, column.Name);
            }
        }
        return names + " and " + last;
    }

    /// Adds a condition: COLUMN=PATTERN or COLUMN!=PATTERN.
    /// @throws std::invalid_argument with what is wrong, for the user.
    void AddFilter(const std::string& text)
    {
        const std::size_t sign = text.find('=');
        if (sign == std::string::npos)
        {
            throw std::invalid_argument('"' + text + "\" is not COLUMN=PATTERN or COLUMN!=PATTERN, such as " +
                                        columns.front().Name + "=press*");
        }
        const bool isNegated = sign > 0 && text[sign - 1] == '!';
        filters.push_back(
            {ColumnNamed(text.substr(0, isNegated ? sign - 1 : sign)), Wildcard(text.substr(sign + 1)), !isNegated});
    }

    /// Adds an order for rows that are alike in those added before: COLUMN or, for the reverse, COLUMN:desc.
    /// @throws std::invalid_argument with what is wrong, for the user.
    void AddOrder(const std::string& text)
    {
        const std::size_t colon = text.find(':');
        const std::string direction = colon == std::string::npos ? "asc" : text.substr(colon + 1);
        if (direction != "asc" && direction != "desc")
        {
            throw std::invalid_argument('"' + direction + "\" is not a direction; it is asc or desc, such as " +
                                        columns.front().Name + ":desc");
        }
        orders.push_back({ColumnNamed(text.substr(0, colon)), direction == "desc"});
    }

    /// Whether the row meets all conditions; ages count up to now.
    bool Accepts(const Row& row, TimePoint now) const
    {
        return std::ranges::all_of(filters, [this, &row, now](const Filter& each) {
            const std::string text = each.Column.Text(row, now);
            return each.Pattern.Matches(show == nullptr ? text : show(text)) == each.Wanted;
        });
    }

    /// The accepted ones of the rows in the wanted order, as far as there is one. They must outlive the result.
    std::vector<const Row*> Of(std::vector<const Row*> rows, TimePoint now) const
    {
        std::erase_if(rows, [this, now](const Row* each) { return !Accepts(*each, now); });
        if (!orders.empty())
        {
            std::ranges::stable_sort(rows,
                                     [this](const Row* left, const Row* right) { return IsBefore(*left, *right); });
        }
        return rows;
    }

    template <class TRows>
    std::vector<const Row*> Of(const TRows& rows, TimePoint now) const
    {
        std::vector<const Row*> all;
        for (const Row& row : rows)
        {
            all.push_back(&row);
        }
        return Of(std::move(all), now);
    }

private:
    struct Filter
    {
        TColumn Column;
        Wildcard Pattern;
        bool Wanted; // that the pattern matches
    };

    struct Order
    {
        TColumn Column;
        bool Descending;
    };

    const TColumn& ColumnNamed(std::string_view name) const
    {
        const auto found = std::ranges::find(columns, name, &TColumn::Name);
        if (found == columns.end())
        {
            throw std::invalid_argument('"' + std::string(name) + "\" is not a column; the columns are " +
                                        ColumnNames());
        }
        return *found;
    }

    bool IsBefore(const Row& left, const Row& right) const
    {
        for (const Order& order : orders)
        {
            const Row& first = order.Descending ? right : left;
            const Row& second = order.Descending ? left : right;
            if (order.Column.IsBefore(first, second))
            {
                return true;
            }
            if (order.Column.IsBefore(second, first))
            {
                return false;
            }
        }
        return false;
    }

    Show show;
    std::vector<TColumn> columns;
    std::vector<Filter> filters;
    std::vector<Order> orders;
};
} // namespace Zent::Discovery::Inventory
