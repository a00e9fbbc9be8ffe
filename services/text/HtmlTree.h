#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

struct GumboInternalNode;

namespace quarrynet::services {

/// What reading one page may cost. Beyond the first three, the rest of the page is left out; beyond the others there is
/// no tree. Pages that are written for readers keep to all but the first one.
struct HtmlLimits
{
    std::size_t bytes = 512 * 1024;
    std::size_t depth = 512;                            ///< elements open within each other
    std::size_t attributes = 256;                       ///< of one tag
    std::size_t memory = std::size_t{64} * 1024 * 1024; ///< of the tree, in bytes
    std::int64_t milliseconds = 2000;                   ///< of processor time
};

/// Returns the length of the beginning of `page` that keeps to `limits`: to the first tag that goes too deep or has too
/// many attributes. Elements that end with their parent or with the next of their kind, such as "p" and "li", do not
/// count. Where tags do not match, the depth may be taken for greater than it is. Time grows in proportion to the page.
std::size_t lengthWithinLimits(std::string_view page, const HtmlLimits& limits);

/// The elements and texts of a page, as the HTML standard's parser finds them.
class HtmlTree
{
public:
    /// Parses UTF-8; what is not becomes U+FFFD. `page` has to outlive the tree. The parser's time grows with the depth
    /// times the length, and its memory with the formatting elements times the paragraphs; so there is no tree, root()
    /// is null, when a limit on those is met. Throws std::bad_alloc when the machine's memory is.
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
