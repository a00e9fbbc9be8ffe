#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "ground/ascii.h"
#include "text/HtmlTree.h"

namespace quarrynet::services {

namespace {

using Names = std::string_view;

/// Returns whether `name` is in a list of names that are each between blanks.
bool isIn(Names list, std::string_view name)
{
    for (std::size_t at = list.find(name); at != std::string_view::npos; at = list.find(name, at + 1)) {
        if (at > 0 && list[at - 1] == ' ' && list[at + name.size()] == ' ')
            return true;
    }
    return false;
}

// Elements without content.
constexpr Names kVoid =
    " area base basefont bgsound br col embed frame hr img input keygen link meta param source track "
    "wbr ";
// Elements that their parent or the next of their kind closes, so at most one is open for each element that counts.
constexpr Names kImplied = " a body caption colgroup dd dt head html li nobr option p tbody td tfoot th thead tr ";
// Elements that contain text only.
constexpr Names kRawText = " iframe noembed noframes script style textarea title xmp ";
// Elements inside which an end tag of another name closes nothing outside.
constexpr Names kBarriers = " applet marquee math object select svg table template ";
// Elements whose end tags close everything inside.
constexpr Names kBlocks =
    " address article aside blockquote center details dialog dir div dl fieldset figcaption figure "
    "footer h1 h2 h3 h4 h5 h6 header main menu nav ol pre section summary ul applet marquee object "
    "select table template ";
// The only elements across which the end tag of a non-block element closes.
constexpr Names kInline =
    " abbr acronym b bdi bdo big cite code data del dfn em font i ins kbd label mark q s samp small "
    "span strike strong sub sup time tt u var ";

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r';
}

/// Scans the tags of a page, and tracks the open elements.
class DepthScan
{
public:
    DepthScan(std::string_view page, const HtmlLimits& limits) : page_(page.substr(0, limits.bytes)), limits_(limits) {}

    std::size_t run()
    {
        while (at_ < page_.size()) {
            const std::size_t open = page_.find('<', at_);
            if (open == std::string_view::npos)
                break;
            at_ = open + 1;
            const char next = at_ < page_.size() ? page_[at_] : '\0';
            if (isAsciiLetter(next)) {
                if (!startTag())
                    return open;
            } else if (next == '/' && at_ + 1 < page_.size() && isAsciiLetter(page_[at_ + 1])) {
                ++at_;
                const std::string name = tagName();
                if (attributes().count > limits_.attributes) // the parser compares attributes of end tags too
                    return open;
                close(name);
            } else if (page_.substr(at_, 3) == "!--") {
                comment();
            } else if (next == '/' || next == '!' || next == '?') {
                at_ = std::min(page_.find('>', at_), page_.size());
            }
        }
        return page_.size();
    }

private:
    std::string tagName()
    {
        std::string name;
        for (; at_ < page_.size() && !isBlank(page_[at_]) && page_[at_] != '/' && page_[at_] != '>'; ++at_)
            name.push_back(toLowerAscii(page_[at_]));
        return name;
    }

    void comment()
    {
        at_ += 3;
        if (page_.substr(at_, 1) == ">" || page_.substr(at_, 2) == "->")
            return;
        while (at_ < page_.size()) {
            at_ = std::min(page_.find("--", at_), page_.size());
            const std::string_view end = page_.substr(at_, 4);
            if (end.substr(0, 3) == "-->" || end == "--!>")
                return;
            ++at_;
        }
    }

    struct Attributes
    {
        std::size_t count = 0;
        bool selfClosing = false;
    };

    /// Moves to the end of the tag.
    Attributes attributes()
    {
        Attributes found;
        while (at_ < page_.size()) {
            const char c = page_[at_++];
            if (c == '>')
                return found;
            found.selfClosing = c == '/';
            if (isBlank(c) || c == '/')
                continue;
            ++found.count;
            while (at_ < page_.size() && !isBlank(page_[at_]) && page_[at_] != '/' && page_[at_] != '>' &&
                   page_[at_] != '=')
                ++at_;
            skipBlanks();
            if (at_ < page_.size() && page_[at_] == '=')
                value();
        }
        return found;
    }

    void skipBlanks()
    {
        while (at_ < page_.size() && isBlank(page_[at_]))
            ++at_;
    }

    void value()
    {
        ++at_;
        skipBlanks();
        const char quote = at_ < page_.size() ? page_[at_] : '\0';
        if (quote == '"' || quote == '\'') {
            at_ = page_.find(quote, at_ + 1);
            at_ = at_ == std::string_view::npos ? page_.size() : at_ + 1;
            return;
        }
        while (at_ < page_.size() && !isBlank(page_[at_]) && page_[at_] != '>')
            ++at_;
    }

    /// Returns false when the tag exceeds a limit.
    bool startTag()
    {
        const std::string name = tagName();
        const Attributes found = attributes();
        if (found.count > limits_.attributes)
            return false;
        // In SVG and MathML, names do not have their HTML meaning.
        const bool foreign = isOpen("svg") || isOpen("math");
        if (foreign && found.selfClosing)
            return true;
        if (!foreign && name == "plaintext")
            at_ = page_.size();
        if (!foreign && isIn(kRawText, name) && (name == "script" || !isOpen("select"))) {
            skipRawText(name);
            return true;
        }
        if (!foreign && (isIn(kVoid, name) || isIn(kImplied, name)))
            return true;
        open_.push_back(name);
        ++counts_[name];
        return open_.size() <= limits_.depth;
    }

    /// Moves to the end tag of `name`.
    void skipRawText(const std::string& name)
    {
        for (; at_ < page_.size(); ++at_) {
            at_ = std::min(page_.find("</", at_), page_.size());
            const std::string_view text = page_.substr(std::min(at_ + 2, page_.size()), name.size() + 1);
            if (text.size() == name.size() + 1 && equalsIgnoringCase(text.substr(0, name.size()), name) &&
                (isBlank(text.back()) || text.back() == '/' || text.back() == '>'))
                return;
        }
    }

    bool isOpen(const std::string& name) const
    {
        const auto count = counts_.find(name);
        return count != counts_.end() && count->second > 0;
    }

    void close(const std::string& name)
    {
        if (!isOpen(name))
            return;
        const bool block = isIn(kBlocks, name);
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (open_[i] == name) {
                for (; open_.size() > i; open_.pop_back())
                    --counts_[open_.back()];
                return;
            }
            if (isIn(kBarriers, open_[i]) || (!block && !isIn(kInline, open_[i])))
                return;
        }
    }

    std::string_view page_;
    const HtmlLimits& limits_;
    std::size_t at_ = 0;
    std::vector<std::string> open_;
    std::unordered_map<std::string, std::size_t> counts_; ///< number of each name in open_
};

} // namespace

std::size_t lengthWithinLimits(std::string_view page, const HtmlLimits& limits)
{
    return DepthScan(page, limits).run();
}

} // namespace quarrynet::services
