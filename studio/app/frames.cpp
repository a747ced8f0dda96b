#include "studio/app/frames.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>
#include <unordered_set>

#include "studio/app/option_values.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr int kLastFrame = 9'999'999;
constexpr std::size_t kMaxFrames = 1'000'000;
constexpr int kMaxDigits = 20;

// Reads a frame number at the front of `text` and removes it; false when there is none.
bool takeNumber(std::string_view& text, int& number) {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || std::abs(static_cast<std::int64_t>(number)) > kLastFrame)
        return false;
    text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
    return true;
}

bool take(std::string_view& text, char sign) {
    if (text.empty() || text.front() != sign) return false;
    text.remove_prefix(1);
    return true;
}

struct Span {
    int first = 0;
    int last = 0;
    int step = 1;
};

bool readSpan(std::string_view text, Span& span) {
    if (!takeNumber(text, span.first)) return false;
    span.last = span.first;
    if (take(text, '-')) {
        if (!takeNumber(text, span.last)) return false;
        if (take(text, 'x') && !(takeNumber(text, span.step) && span.step > 0)) return false;
    }
    return text.empty();
}

}  // namespace

std::vector<int> frameNumbers(const std::string& text) {
    std::vector<int> frames;
    std::unordered_set<int> seen;
    for (std::string_view rest = text;;) {
        const std::size_t end = rest.find(',');
        Span span;
        if (!readSpan(rest.substr(0, end), span)) {
            refuse(fmt::format("frames from -{0} to {0} like 7 or 1-48 or 1-48x2,60", kLastFrame),
                   text);
        }
        const int step = span.last < span.first ? -span.step : span.step;
        for (int frame = span.first; step > 0 ? frame <= span.last : frame >= span.last;
             frame += step) {
            if (seen.insert(frame).second) frames.push_back(frame);
            if (frames.size() > kMaxFrames)
                refuse(fmt::format("at most {} frames", kMaxFrames), text);
        }
        if (end == std::string_view::npos) return frames;
        rest.remove_prefix(end + 1);
    }
}

std::string frameText(const std::vector<int>& frames) {
    std::string text;
    for (std::size_t first = 0; first < frames.size();) {
        std::size_t last = first;
        while (last + 1 < frames.size() && frames[last + 1] == frames[last] + 1)
            ++last;
        text += fmt::format("{}{}", text.empty() ? "" : ", ", frames[first]);
        if (last > first) text += fmt::format("-{}", frames[last]);
        first = last + 1;
    }
    return text;
}

FrameName::FrameName(const std::string& pattern) {
    std::string* part = &before_;
    const auto startNumber = [&](std::size_t digits) {
        if (hasNumber_) {
            throw Error(
                Fault::Usage,
                fmt::format("-o {}: has two places for a frame's number; leave one", pattern));
        }
        hasNumber_ = true;
        digits_ = static_cast<int>(digits);
        part = &after_;
    };
    for (std::size_t i = 0; i < pattern.size();) {
        if (pattern[i] == '#') {
            const std::size_t end = std::min(pattern.find_first_not_of('#', i), pattern.size());
            startNumber(end - i);
            i = end;
            continue;
        }
        if (pattern[i] == '%') {
            const std::size_t end = pattern.find_first_not_of("0123456789", i + 1);
            const bool isNumber = end != std::string::npos && pattern[end] == 'd';
            if (isNumber && (end == i + 1 || pattern[i + 1] == '0') && end - i < 4) {
                const int digits = end > i + 1 ? std::atoi(pattern.c_str() + i + 1) : 1;
                startNumber(static_cast<std::size_t>(std::clamp(digits, 1, kMaxDigits)));
                i = end + 1;
                continue;
            }
            if (pattern.compare(i, 2, "%%") == 0) ++i;
        }
        *part += pattern[i++];
    }
}

std::string FrameName::of(int frame) const {
    if (!hasNumber_) return before_;
    return fmt::format("{}{:0{}}{}", before_, frame, frame < 0 ? digits_ + 1 : digits_, after_);
}

}  // namespace tavora::studio
