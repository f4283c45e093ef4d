#include "platform/gtk/status/MenuMatch.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace harbrook::gtk {

namespace {

bool hasText(const MenuItem& item) {
    return std::holds_alternative<std::string>(item.representedObject);
}

bool sameAction(const MenuItem& a, const MenuItem& b) {
    return a.action == b.action && a.target == b.target && a.representedObject == b.representedObject;
}

/// The first choice in a submenu that names something (a project's path, say), and so tells it from others.
const MenuItem* namedChoice(const MenuItem& item) {
    const auto& items = item.submenu->items;
    const auto found = std::ranges::find_if(items, hasText);
    return found == items.end() ? nullptr : &*found;
}

bool offers(const MenuItem& item, const MenuItem& choice) {
    return std::ranges::any_of(
        item.submenu->items, [&](const MenuItem& other) { return sameAction(other, choice); });
}

bool sameSubmenu(const MenuItem& a, const MenuItem& b) {
    const auto* choiceOfA = namedChoice(a);
    const auto* choiceOfB = namedChoice(b);
    if (!choiceOfA || !choiceOfB) return !choiceOfA && !choiceOfB && a.title == b.title;
    return offers(b, *choiceOfA) || offers(a, *choiceOfB);
}

/// Whether `b`, in the place of `a`, still means the same.
bool continues(const MenuItem& a, const MenuItem& b) {
    if (a.isSeparator || b.isSeparator) return a.isSeparator == b.isSeparator;
    if (a.submenu || b.submenu) return a.submenu && b.submenu && sameSubmenu(a, b);
    if (a.action.empty() && b.action.empty()) return true;
    if (a.action.empty() || b.action.empty()) return a.title == b.title;
    return sameAction(a, b);
}

std::string actionKey(const MenuItem& item) {
    std::string key = "action\n" + item.action + '\n';
    if (const auto* text = std::get_if<std::string>(&item.representedObject)) return key + '"' + *text;
    if (const auto* number = std::get_if<std::int64_t>(&item.representedObject)) {
        return key + std::to_string(*number);
    }
    return key;
}

/// What a row can be recognised by when it has left its place; a submenu has many such keys.
std::vector<std::string> keys(const MenuItem& item) {
    if (item.isSeparator) return {"separator"};
    if (!item.submenu) return {item.action.empty() ? "text\n" + item.title : actionKey(item)};
    std::vector<std::string> result;
    for (const auto& choice : item.submenu->items) {
        if (hasText(choice)) result.push_back("submenu\n" + actionKey(choice));
    }
    if (result.empty()) result.push_back("submenu\n" + item.title);
    return result;
}

/// The rows that may still be continued, by their keys.
class Remaining {
public:
    explicit Remaining(std::size_t count) : taken_(count, false) {}

    /// The row added last is taken first.
    void add(const MenuItem& item, std::size_t index) {
        for (auto& key : keys(item))
            byKey_[std::move(key)].push_back(index);
    }

    std::optional<std::size_t> take(const MenuItem& item) {
        for (const auto& key : keys(item)) {
            const auto found = byKey_.find(key);
            if (found == byKey_.end()) continue;
            auto& indices = found->second;
            while (!indices.empty() && taken_[indices.back()])
                indices.pop_back();
            if (indices.empty()) continue;
            taken_[indices.back()] = true;
            return indices.back();
        }
        return std::nullopt;
    }

private:
    std::vector<bool> taken_;
    std::unordered_map<std::string, std::vector<std::size_t>> byKey_;
};

} // namespace

std::vector<std::optional<std::size_t>> matchRows(
    const std::vector<const MenuItem*>& before, const std::vector<MenuItem>& now) {
    std::vector<std::optional<std::size_t>> matches(now.size());
    const auto shorter = std::min(before.size(), now.size());

    // Most updates change a row or two, so most rows are found in their places, from either end.
    std::size_t start = 0;
    for (; start < shorter && continues(*before[start], now[start]); ++start)
        matches[start] = start;
    auto endBefore = before.size();
    auto endNow = now.size();
    while (endBefore > start && endNow > start && continues(*before[endBefore - 1], now[endNow - 1])) {
        matches[--endNow] = --endBefore;
    }

    if (start == endBefore || start == endNow) return matches;
    Remaining remaining(before.size());
    for (auto i = endBefore; i > start; --i)
        remaining.add(*before[i - 1], i - 1);
    for (auto i = start; i < endNow; ++i)
        matches[i] = remaining.take(now[i]);
    return matches;
}

} // namespace harbrook::gtk
