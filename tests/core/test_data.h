#pragma once

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

/// What the parsers' tests feed them from.
namespace quarrynet::samples {

/// A file below tests/data as bytes. A missing file fails the test.
inline std::string dataFile(const std::string& name)
{
    std::ifstream file(std::string(QUARRYNET_TEST_DATA "/") + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The bytes in a heap block of exactly their size: a read beyond the end of a page is then a sanitizer's fault.
class ExactPage
{
public:
    explicit ExactPage(std::string_view bytes) : bytes_(new char[bytes.size()]), size_(bytes.size())
    {
        bytes.copy(bytes_.get(), size_);
    }

    operator std::string_view() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

} // namespace quarrynet::samples
