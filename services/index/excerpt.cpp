#include "index/excerpt.h"

#include <algorithm>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "ground/utf8.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::string_view kLeftOut = "...";
constexpr int kFirstOfPhrase = 1000; // a further phrase outweighs any number of repetitions in a window

/// A match; words of the column's text are counted from 0.
struct Match
{
    int phrase = 0;
    int begin = 0;
    int end = 0;
};

/// The words of the excerpt, counted likewise.
struct Window
{
    int begin = 0;
    int end = 0;
};

int matchesOf(const Fts5ExtensionApi* api, Fts5Context* context, int column, std::vector<Match>& matches)
{
    int count = 0;
    int code = api->xInstCount(context, &count);
    for (int i = 0; i < count && code == SQLITE_OK; ++i) {
        Match match;
        int where = 0;
        code = api->xInst(context, i, &match.phrase, &where, &match.begin);
        match.end = match.begin + api->xPhraseSize(context, match.phrase);
        if (code == SQLITE_OK && where == column)
            matches.push_back(match);
    }
    return code;
}

/// Returns the match's end, clipped to the window size for a longer phrase.
int endWithin(const Match& match, int words)
{
    return std::min(match.end, match.begin + words);
}

/// Moves a window over the matches, which are sorted by their beginnings, and returns its best position.
Window bestWindow(const std::vector<Match>& matches, int phrases, int size, int words)
{
    std::vector<int> repetitions(static_cast<std::size_t>(std::max(phrases, 1)), 0);
    int score = 0;
    int bestScore = 0;
    int first = 0;
    int last = 0;
    std::size_t next = 0;
    for (std::size_t i = 0; i < matches.size(); ++i) {
        const Match& start = matches[i];
        for (; next < matches.size() && endWithin(matches[next], words) <= start.begin + words; ++next)
            score += repetitions[static_cast<std::size_t>(matches[next].phrase)]++ == 0 ? kFirstOfPhrase : 1;
        if (score > bestScore) {
            bestScore = score;
            first = start.begin;
            last = endWithin(matches[next - 1], words);
        }
        score -= --repetitions[static_cast<std::size_t>(start.phrase)] == 0 ? kFirstOfPhrase : 1;
    }
    const int margin = (words - (last - first)) / 2;
    Window window;
    window.begin = std::max(0, std::min(first - margin, size - words));
    window.end = window.begin + words;
    return window;
}

/// Builds the excerpt while the tokenizer walks through the text.
class Excerpt
{
public:
    Excerpt(std::string_view text, Window window, const std::vector<Match>& matches)
        : text_(text), window_(window), matches_(matches)
    {}

    static int onToken(void* self, int flags, const char*, int, int begin, int end)
    {
        try {
            return static_cast<Excerpt*>(self)->take(flags, static_cast<std::size_t>(begin),
                                                     static_cast<std::size_t>(end));
        } catch (const std::bad_alloc&) {
            return SQLITE_NOMEM;
        }
    }

    std::string finish()
    {
        closeMatch();
        if (full_)
            out_ += kLeftOut;
        else
            out_ += clipUtf8(text_.substr(done_), room(done_));
        return std::move(out_);
    }

private:
    std::size_t room(std::size_t at) const
    {
        return kMaxExcerptBytes - std::min<std::size_t>(at - begin_, kMaxExcerptBytes);
    }

    int take(int flags, std::size_t begin, std::size_t end)
    {
        if ((flags & FTS5_TOKEN_COLOCATED) != 0)
            return SQLITE_OK;
        const int word = word_++;
        if (word < window_.begin)
            return SQLITE_OK;
        if (word == window_.begin && word > 0) {
            out_ += kLeftOut;
            begin_ = begin;
            done_ = begin;
        }
        if (word >= window_.end || end - begin_ > kMaxExcerptBytes) {
            full_ = true;
            return SQLITE_DONE;
        }
        if (matchEnd_ <= word)
            closeMatch();
        while (match_ < matches_.size() && matches_[match_].begin <= word) {
            if (matchEnd_ == 0 && matches_[match_].end > word) {
                out_ += text_.substr(done_, begin - done_);
                done_ = begin;
                out_.push_back(kMatchBegin);
            }
            matchEnd_ = std::max(matchEnd_, matches_[match_].end > word ? matches_[match_].end : 0);
            ++match_;
        }
        out_ += text_.substr(done_, end - done_);
        done_ = end;
        return SQLITE_OK;
    }

    void closeMatch()
    {
        if (matchEnd_ > 0)
            out_.push_back(kMatchEnd);
        matchEnd_ = 0;
    }

    std::string_view text_;
    Window window_;
    const std::vector<Match>& matches_;
    std::string out_;
    std::size_t begin_ = 0; ///< where the excerpt begins in the text
    std::size_t done_ = 0;  ///< where the text that is not yet in out_ begins
    std::size_t match_ = 0; ///< the next match that may begin
    int matchEnd_ = 0;      ///< end of the open match, or 0
    int word_ = 0;
    bool full_ = false;
};

int makeExcerpt(const Fts5ExtensionApi* api, Fts5Context* context, int column, int words, std::string& out)
{
    std::vector<Match> matches;
    int code = matchesOf(api, context, column, matches);
    int size = 0;
    if (code == SQLITE_OK)
        code = api->xColumnSize(context, column, &size);
    const char* bytes = nullptr;
    int length = 0;
    if (code == SQLITE_OK)
        code = api->xColumnText(context, column, &bytes, &length);
    if (code != SQLITE_OK)
        return code;
    const std::string_view text(bytes == nullptr ? "" : bytes, static_cast<std::size_t>(length));
    Excerpt excerpt(text, bestWindow(matches, api->xPhraseCount(context), size, words), matches);
    code = api->xTokenize(context, text.data(), length, &excerpt, Excerpt::onToken);
    if (code != SQLITE_OK && code != SQLITE_DONE)
        return code;
    out = excerpt.finish();
    return SQLITE_OK;
}

void excerptFunction(const Fts5ExtensionApi* api, Fts5Context* context, sqlite3_context* result, int count,
                     sqlite3_value** values)
{
    if (count != 2) {
        sqlite3_result_error(result, "excerpt() takes a column and a number of words", -1);
        return;
    }
    try {
        std::string text;
        const int words = std::max(1, sqlite3_value_int(values[1]));
        const int code = makeExcerpt(api, context, sqlite3_value_int(values[0]), words, text);
        if (code == SQLITE_OK)
            sqlite3_result_text(result, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        else
            sqlite3_result_error_code(result, code);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(result);
    }
}

} // namespace

Outcome<Done> addExcerpt(Database& database)
{
    Outcome<Statement> statement = database.prepare("SELECT fts5(?1)");
    if (!statement)
        return statement.error();
    fts5_api* api = nullptr;
    statement->bindPointer(1, static_cast<void*>(&api), "fts5_api_ptr");
    (void)statement->step();
    if (api == nullptr || api->xCreateFunction(api, "excerpt", nullptr, excerptFunction, nullptr) != SQLITE_OK)
        return Failure{"this SQLite has no full-text search"};
    return Done{};
}

} // namespace quarrynet::services
