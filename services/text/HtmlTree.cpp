#include "text/HtmlTree.h"

#include <csetjmp>
#include <ctime>
#include <gumbo.h>
#include <new>
#include <vector>

namespace quarrynet::services {

/// The memory of one tree. It is freed as a whole, because the parser's own function recurses into each level of the
/// tree. Exceeding a limit leaves the parser by longjmp(), because the parser assumes that allocation never fails.
class HtmlTree::Memory
{
public:
    explicit Memory(const HtmlLimits& limits) : limits_(limits), end_(processorMilliseconds() + limits.milliseconds) {}

    /// Returns the output, or null when a limit is exceeded. Throws std::bad_alloc when memory runs out.
    GumboOutput* parse(std::string_view page)
    {
        GumboOptions options = kGumboDefaultOptions;
        options.allocator = [](void* memory, std::size_t size) { return static_cast<Memory*>(memory)->take(size); };
        options.deallocator = [](void*, void*) {};
        options.userdata = this;
        options.max_errors = 0;
        // The frames between here and take() belong to the parser, which is C, so longjmp() skips no destructors.
        if (setjmp(giveUp_) != 0) { // NOLINT(cert-err52-cpp)
            if (outOfMemory_)
                throw std::bad_alloc();
            return nullptr;
        }
        return gumbo_parse_with_options(&options, page.data(), page.size());
    }

private:
    static constexpr std::size_t kBlock = 256 * 1024;
    static constexpr unsigned kCallsBetweenLooks = 256;

    static std::int64_t processorMilliseconds()
    {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<std::int64_t>(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
    }

    void* take(std::size_t size)
    {
        constexpr std::size_t kAlignment = alignof(std::max_align_t);
        size = size > limits_.memory ? size : (size + kAlignment - 1) / kAlignment * kAlignment;
        if (size > left_ && !addBlock(size))
            std::longjmp(giveUp_, 1); // NOLINT(cert-err52-cpp)
        if (++calls_ % kCallsBetweenLooks == 0 && processorMilliseconds() >= end_)
            std::longjmp(giveUp_, 1); // NOLINT(cert-err52-cpp)
        char* place = next_;
        next_ += size;
        left_ -= size;
        return place;
    }

    /// Must not throw: the caller is C code.
    bool addBlock(std::size_t size)
    {
        const std::size_t block = size > kBlock ? size : kBlock;
        if (block > limits_.memory - used_)
            return false;
        try {
            blocks_.push_back(std::unique_ptr<char[]>(new char[block]));
        } catch (const std::bad_alloc&) {
            outOfMemory_ = true;
            return false;
        }
        next_ = blocks_.back().get();
        left_ = block;
        used_ += block;
        return true;
    }

    HtmlLimits limits_;
    std::int64_t end_;
    std::vector<std::unique_ptr<char[]>> blocks_;
    char* next_ = nullptr;
    std::size_t left_ = 0; ///< bytes left in the last block
    std::size_t used_ = 0;
    unsigned calls_ = 0;
    bool outOfMemory_ = false;
    std::jmp_buf giveUp_{};
};

HtmlTree::HtmlTree(std::string_view page, const HtmlLimits& limits) : memory_(std::make_unique<Memory>(limits))
{
    const GumboOutput* output = memory_->parse(page.substr(0, lengthWithinLimits(page, limits)));
    if (output != nullptr)
        root_ = output->root;
}

HtmlTree::~HtmlTree() = default;

} // namespace quarrynet::services
