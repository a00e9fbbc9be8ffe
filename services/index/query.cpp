#include "index/query.h"

#include <algorithm>

#include "ground/ascii.h"
#include "ground/utf8.h"
#include "index/package_names.h"

namespace quarrynet::services {

namespace {

// Nobody types more; a pasted page of text stays cheap.
constexpr std::size_t kMaxTerms = 32;
constexpr std::size_t kMaxTermBytes = 200;

// A single typed letter would match the beginning of almost any name.
constexpr std::size_t kMinNameCharacters = 2;

// The last Unicode character, which sorts after every continuation of a prefix.
constexpr std::string_view kLastCharacter = "\xF4\x8F\xBF\xBF";

struct Term
{
    std::string text;
    bool excluded = false;
    bool phrase = false;
};

/// Returns whether `text` contains anything that the tokenizer can make a word of. Non-ASCII punctuation passes; the
/// index itself ignores a phrase without a word.
bool hasWord(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](char c) { return isAsciiAlphanumeric(c) || !isAscii(c); });
}

/// Returns a string of the full-text syntax. A NUL would end the expression, so it becomes a blank.
std::string quoted(std::string_view text)
{
    std::string out = "\"";
    for (const char c : clipUtf8(text, kMaxTermBytes)) {
        if (c == '"')
            out += "\"\"";
        else
            out.push_back(c == '\0' ? ' ' : c);
    }
    out.push_back('"');
    return out;
}

std::vector<Term> splitTerms(std::string_view text)
{
    std::vector<Term> terms;
    while (terms.size() < kMaxTerms) {
        while (!text.empty() && isBlankOrControl(text.front()))
            text.remove_prefix(1);
        if (text.empty())
            break;
        Term term;
        if (text.front() == '-') {
            term.excluded = true;
            text.remove_prefix(1);
        }
        std::size_t length = 0;
        if (!text.empty() && text.front() == '"') {
            text.remove_prefix(1);
            length = std::min(text.find('"'), text.size());
            term.text = std::string(text.substr(0, length));
            term.phrase = true;
            text.remove_prefix(std::min(length + 1, text.size()));
        } else {
            while (length < text.size() && !isBlankOrControl(text[length]))
                ++length;
            term.text = std::string(text.substr(0, length));
            text.remove_prefix(length);
        }
        terms.push_back(std::move(term));
    }
    return terms;
}

std::size_t countCharacters(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !isUtf8Continuation(c); }));
}

std::string likePattern(std::string_view text)
{
    std::string pattern = "%";
    for (const char c : text) {
        if (c == '%' || c == '_' || c == '\\')
            pattern.push_back('\\');
        pattern.push_back(c);
    }
    pattern.push_back('%');
    return pattern;
}

/// Returns the wanted words with `divider` between them, or an empty text when they cannot be a name.
std::string joined(const std::vector<Term>& terms, char divider)
{
    std::string name;
    for (const Term& term : terms) {
        if (term.excluded)
            continue;
        if (term.phrase)
            return {};
        if (!name.empty())
            name.push_back(divider);
        name += term.text;
    }
    return name.size() > kMaxTermBytes || countCharacters(name) < kMinNameCharacters ? std::string() : name;
}

/// Returns the full-text expression that matches the terms, or the expression `name` unless that is empty.
std::string expressionOf(const std::vector<Term>& terms, const std::string& name)
{
    std::string wanted;
    std::string excluded;
    for (const Term& term : terms) {
        if (!hasWord(term.text))
            continue;
        if (term.excluded) {
            excluded += excluded.empty() ? "" : " OR ";
            excluded += quoted(term.text);
        } else {
            wanted += wanted.empty() ? "" : " ";
            wanted += quoted(term.text);
        }
    }
    if (!wanted.empty() && !name.empty())
        wanted = "(" + wanted + ") OR (" + name + ")";
    if (wanted.empty() || excluded.empty())
        return wanted;
    return "(" + wanted + ") NOT (" + excluded + ")";
}

} // namespace

std::string wordExpression(std::string_view typed)
{
    return expressionOf(splitTerms(toUtf8(typed)), {});
}

WordQuery wordQuery(std::string_view typed, std::string_view nameColumn)
{
    const std::vector<Term> terms = splitTerms(toUtf8(typed));
    WordQuery query;
    query.name = toLowerAscii(joined(terms, '-'));
    if (!query.name.empty())
        query.nameEnd = query.name + std::string(kLastCharacter);
    std::vector<std::string> words;
    words.reserve(terms.size());
    for (const Term& term : terms)
        words.push_back(toLowerAscii(term.text));
    query.companions = asksForCompanions(words);
    // The index has only the words of a name: "g++" would match all names that begin with "g".
    std::string beginning;
    if (!query.name.empty() && hasWord(query.name.substr(query.name.size() - 1)))
        beginning = std::string(nameColumn) + " : ^ " + quoted(joined(terms, ' ')) + " *";
    query.expression = expressionOf(terms, beginning);
    return query;
}

NameQuery nameQuery(std::string_view typed)
{
    NameQuery query;
    const std::string text = toUtf8(typed);
    std::string_view rest = text;
    std::size_t terms = 0;
    while (!rest.empty() && terms < kMaxTerms) {
        std::size_t length = 0;
        while (length < rest.size() && !isBlankOrControl(rest[length]))
            ++length;
        const std::string_view word = clipUtf8(rest.substr(0, length), kMaxTermBytes);
        rest.remove_prefix(std::min(length + 1, rest.size()));
        if (word.empty())
            continue;
        ++terms;
        query.words.push_back(toLowerAscii(word));
        if (query.first.empty()) {
            query.first = std::string(word);
            query.firstEnd = query.first + std::string(kLastCharacter);
        } else {
            query.otherPatterns.push_back(likePattern(word));
        }
        if (countCharacters(word) < 3) {
            query.patterns.push_back(likePattern(word));
        } else {
            query.expression += query.expression.empty() ? "" : " ";
            query.expression += quoted(word);
        }
    }
    return query;
}

} // namespace quarrynet::services
