#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

struct GumboInternalNode;

namespace quarrynet::services {

/// Limits for parsing one page. Beyond any of the first three, the rest of the page is ignored; beyond the others there
/// is no tree. Real pages exceed only the first.
struct HtmlLimits
{
    std::size_t bytes = 512 * 1024;
    std::size_t depth = 512;                            ///< nested open elements
    std::size_t attributes = 256;                       ///< per tag
    std::size_t memory = std::size_t{64} * 1024 * 1024; ///< of the tree, in bytes
    std::int64_t milliseconds = 2000;                   ///< processor time
};

/// Returns the length of the beginning of `page` that is within `limits`: it ends before the first tag that is too deep
/// or has too many attributes. Elements that their parent or the next of their kind closes, such as "p" and "li", do
/// not count. Mismatched tags may make the depth look greater than it is. The time is proportional to the page's
/// length.
std::size_t lengthWithinLimits(std::string_view page, const HtmlLimits& limits);

/// The elements and texts of a page, as the HTML standard's parser finds them.
class HtmlTree
{
public:
    /// Parses UTF-8; invalid bytes become U+FFFD. `page` must outlive the tree. The parser's time grows with depth
    /// times length, and its memory with formatting elements times paragraphs, so root() is null when it exceeds a
    /// limit on those. Throws std::bad_alloc when memory runs out.
    explicit HtmlTree(std::string_view page, const HtmlLimits& limits = {});
    ~HtmlTree();
    HtmlTree(const HtmlTree&) = delete;
    HtmlTree& operator=(const HtmlTree&) = delete;

    const GumboInternalNode* root() const { return root_; }

private:
    class Memory;
    std::unique_ptr<Memory> memory_;
    const GumboInternalNode* root_ = nullptr;
};

} // namespace quarrynet::services
