#include "live/searx_answer.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "ground/ascii.h"
#include "ground/utf8.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

/// Returns the number of the four hexadecimal digits after "\u" at the beginning of `text`, or nothing.
std::optional<unsigned> escapedUnit(std::string_view text)
{
    if (text.size() < 6 || text[0] != '\\' || text[1] != 'u')
        return std::nullopt;
    unsigned number = 0;
    for (const char c : text.substr(2, 4)) {
        const int digit = hexDigitValue(c);
        if (digit < 0)
            return std::nullopt;
        number = number * 16 + static_cast<unsigned>(digit);
    }
    return number;
}

bool isHighSurrogate(unsigned unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(unsigned unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Returns `json` in UTF-8, with U+FFFD for escaped surrogates without their other half. Servers write these because
/// the texts of other people's pages contain them, and one such text must not lose the others.
std::string repaired(std::string_view json)
{
    std::string out = withoutBrokenCharacters(json);
    for (std::size_t at = out.find('\\'); at != std::string::npos && at + 1 < out.size(); at = out.find('\\', at)) {
        const std::string_view rest = std::string_view(out).substr(at);
        const std::optional<unsigned> unit = escapedUnit(rest);
        if (!unit || (!isHighSurrogate(*unit) && !isLowSurrogate(*unit))) {
            at += 2;
            continue;
        }
        const std::optional<unsigned> next = escapedUnit(rest.substr(6));
        if (isHighSurrogate(*unit) && next && isLowSurrogate(*next)) {
            at += 12;
        } else {
            out.replace(at + 2, 4, "FFFD");
            at += 6;
        }
    }
    return out;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Shortens the numbers of `json` to values that every parser accepts. Nobody reads them, and one that exceeds the
/// range of double must not lose the rows.
void shortenNumbers(std::string& json)
{
    constexpr std::size_t kMostDigits = 15;
    bool inString = false;
    bool inExponent = false;
    std::size_t digits = 0;
    std::size_t kept = 0;
    for (std::size_t at = 0; at < json.size(); ++at) {
        const char c = json[at];
        const bool digit = !inString && isDigit(c);
        digits = digit ? digits + 1 : 0;
        if (!digit)
            inExponent = !inString && (c == 'e' || c == 'E' || (inExponent && (c == '+' || c == '-')));
        if (digits > kMostDigits || (inExponent && digits > 1))
            continue;
        if (c == '"')
            inString = !inString;
        json[kept++] = digit && inExponent ? '0' : c;
        if (inString && c == '\\' && at + 1 < json.size())
            json[kept++] = json[++at];
    }
    json.resize(kept);
}

std::string oneLine(std::string_view text, std::size_t most)
{
    return std::string(clipUtf8(collapseBlanks(clipUtf8(text, 4 * most)), most));
}

/// Removes blanks and the digits behind them from `text`. Returns the digits if they are a length in pixels, otherwise
/// an empty text.
std::string_view takeLength(std::string_view& text)
{
    constexpr std::size_t kMostDigits = 5;
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
    text.remove_prefix(digits.size());
    return digits.size() > kMostDigits || digits.starts_with('0') ? std::string_view() : digits;
}

/// Returns the size that servers state as "640 x 480", "640x480" or with a multiplication sign, in the first form, or
/// an empty text.
std::string pixelSize(std::string_view text)
{
    const std::string_view width = takeLength(text);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    for (const std::string_view sign : {"x", "\xC3\x97"}) {
        if (!text.starts_with(sign))
            continue;
        text.remove_prefix(sign.size());
        const std::string_view height = takeLength(text);
        const bool ends = text.find_first_not_of(' ') == std::string_view::npos;
        return width.empty() || height.empty() || !ends ? std::string()
                                                        : std::string(width).append(" x ").append(height);
    }
    return {};
}

/// Takes the events of the parser. It keeps nothing but the rows, so that an answer costs no more than its bytes.
class AnswerReader final : public nlohmann::json::json_sax_t
{
public:
    explicit AnswerReader(SearxCategory category) : category_(category) {}

    bool null() override { return value(); }
    bool boolean(bool /*value*/) override { return value(); }
    bool number_integer(number_integer_t /*value*/) override { return value(); }
    bool number_unsigned(number_unsigned_t /*value*/) override { return value(); }
    bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return value(); }
    bool binary(binary_t& /*value*/) override { return value(); }
    bool string(string_t& text) override
    {
        take(text);
        return value();
    }
    bool start_object(std::size_t /*size*/) override
    {
        if (depth_ == 0)
            isObject_ = true;
        if (isRow())
            beginRow();
        return enter();
    }
    bool end_object() override
    {
        --depth_;
        if (isRow())
            endRow();
        return value();
    }
    bool start_array(std::size_t /*size*/) override
    {
        if (depth_ == 1) {
            inResults_ = key_ == "results";
            inSilent_ = key_ == "unresponsive_engines";
            hasResults_ = hasResults_ || inResults_;
        }
        if (depth_ == 2 && inSilent_) {
            engine_ = {};
            engineTexts_ = 0;
        }
        return enter();
    }
    bool end_array() override
    {
        --depth_;
        if (depth_ == 2 && inSilent_ && engineTexts_ > 0 && answer_.silent.size() < kMostSilentEngines)
            answer_.silent.push_back(engine_);
        if (depth_ == 1)
            inResults_ = inSilent_ = false;
        return value();
    }
    bool key(string_t& name) override
    {
        // Only short keys are known, so a long one need not be kept.
        key_ = name.substr(0, 64);
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*fault*/) override
    {
        return false;
    }

    bool tooDeep() const { return tooDeep_; }
    bool isAnswer() const { return isObject_ && hasResults_; }
    SearxAnswer& answer() { return answer_; }

private:
    /// Returns whether the object at this depth is an entry of "results".
    bool isRow() const { return inResults_ && depth_ == 2; }

    bool enter()
    {
        tooDeep_ = ++depth_ > kMaxSearxDepth;
        return !tooDeep_;
    }

    bool value()
    {
        if (inResults_ && depth_ == 2)
            ++answer_.listed;
        return true;
    }

    void take(const std::string& text)
    {
        if (inSilent_ && depth_ == 3) {
            if (++engineTexts_ == 1)
                engine_.first = oneLine(text, 64);
            else if (engineTexts_ == 2)
                engine_.second = oneLine(text, 128);
        }
        if (!inResults_ || depth_ != 3)
            return;
        if (key_ == "url")
            addressField_ = rowAddress(text);
        else if (key_ == "img_src")
            pictureField_ = rowAddress(text);
        else if (key_ == "thumbnail_src")
            row_.thumbnail = rowAddress(text);
        else if (key_ == "title")
            row_.title = oneLine(text, kMaxRowTitle);
        else if (key_ == "content" && category_ != SearxCategory::Images)
            row_.text = oneLine(text, kMaxRowText);
        else if (key_ == "resolution" && category_ == SearxCategory::Images)
            row_.text = pixelSize(text);
    }

    void beginRow()
    {
        row_ = SearxRow();
        addressField_.clear();
        pictureField_.clear();
    }

    void endRow()
    {
        row_.address = category_ == SearxCategory::Images ? pictureField_ : addressField_;
        if (!row_.address.empty() && answer_.rows.size() < kMostSearxRows)
            answer_.rows.push_back(std::move(row_));
    }

    SearxCategory category_;
    SearxAnswer answer_;
    SearxRow row_;
    std::string key_;
    std::string addressField_;
    std::string pictureField_;
    std::pair<std::string, std::string> engine_;
    int engineTexts_ = 0;
    int depth_ = 0;
    bool inResults_ = false;
    bool inSilent_ = false;
    bool hasResults_ = false;
    bool isObject_ = false;
    bool tooDeep_ = false;
};

} // namespace

std::string rowAddress(std::string_view address)
{
    if (address.size() > kMaxRowAddress)
        return {};
    // Engines leave the scheme of many pictures out.
    const bool noScheme = address.starts_with("//");
    const std::size_t end = address.find("://");
    if (!noScheme && end == std::string_view::npos)
        return {};
    const std::string scheme = noScheme ? "https" : toLowerAscii(address.substr(0, end));
    const std::string_view rest = address.substr(noScheme ? 2 : end + 3);
    if ((scheme != "http" && scheme != "https") || rest.find_first_of("/?#") == 0 || rest.empty())
        return {};
    for (const char c : rest) {
        if (isAsciiControl(c))
            return {};
    }
    std::string tidy = scheme + "://" + tidyAddress(rest);
    return tidy.size() > kMaxRowAddress ? std::string() : tidy;
}

Outcome<SearxAnswer> readSearxAnswer(std::string_view json, SearxCategory category)
{
    if (json.size() > kMaxSearxAnswer)
        return Failure{"the answer is larger than " + std::to_string(kMaxSearxAnswer / 1024 / 1024) + " MB"};
    AnswerReader reader(category);
    std::string text = repaired(json);
    shortenNumbers(text);
    const bool read = nlohmann::json::sax_parse(text, &reader);
    if (reader.tooDeep())
        return Failure{"the answer is nested deeper than " + std::to_string(kMaxSearxDepth) + " levels"};
    if (!read)
        return Failure{"the answer is not JSON"};
    if (!reader.isAnswer())
        return Failure{"the answer is JSON, but not that of a search"};
    return std::move(reader.answer());
}

} // namespace quarrynet::services
