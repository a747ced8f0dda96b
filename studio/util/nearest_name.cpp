#include "studio/util/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <utility>
#include <vector>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

std::string lowered(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

// The number of letters to change, add, remove or swap with the next (the optimal string
// alignment distance).
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before;
    std::vector<std::size_t> above(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        above[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::vector<std::size_t> row(b.size() + 1, i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + change});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = std::exchange(above, std::move(row));
    }
    return above[b.size()];
}

// The distance of a candidate from a name; one that contains the whole name is nearer than one
// with a different letter.
std::size_t distance(const std::string& name, const std::string& candidate) {
    if (name == candidate) return 0;
    if (name.size() >= 3 && candidate.find(name) != std::string::npos) return 1;
    return 1 + editDistance(name, candidate);
}

std::string joined(const std::vector<std::string>& names, const char* last) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) text += i + 1 == names.size() ? last : ", ";
        text += names[i];
    }
    return text;
}

}  // namespace

std::string nearestNames(std::string_view name, std::span<const std::string> candidates) {
    constexpr std::size_t kMaxCompared = 256;
    const std::string wanted = lowered(name.substr(0, kMaxCompared));
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const std::string lower = lowered(candidate.substr(0, kMaxCompared));
        const std::size_t away = distance(wanted, lower);
        // One error, and one more for every four letters beyond the first four.
        const std::size_t tolerated = 1 + std::max<std::size_t>(1, wanted.size() / 4);
        if (away <= tolerated) near.emplace_back(away, candidate);
    }
    std::stable_sort(near.begin(), near.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::string> names;
    for (const auto& [away, candidate] : near) {
        if (names.size() < 3) names.push_back(shortened(candidate));
    }
    if (!names.empty()) return fmt::format("; did you mean {}?", joined(names, " or "));
    constexpr std::size_t kFew = 12;
    if (candidates.empty() || candidates.size() > kFew) return {};
    for (const std::string& one : candidates)
        names.push_back(shortened(one));
    return fmt::format("; there {}: {}", names.size() == 1 ? "is only" : "are",
                       joined(names, ", "));
}

}  // namespace tavora::studio
