#pragma once

#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

/// What tests feed readers from.
namespace quarrynet::samples {

/// A file below tests/data as bytes. A missing file fails the test.
inline std::string dataFile(const std::string& name)
{
    std::ifstream file(std::string(QUARRYNET_TEST_DATA "/") + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The bytes in a heap block of exactly their size, so that the address sanitizer reports every read behind the end.
class ExactBytes
{
public:
    explicit ExactBytes(std::string_view bytes) : bytes_(new char[bytes.size()]), size_(bytes.size())
    {
        bytes.copy(bytes_.get(), size_);
    }

    operator std::string_view() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
};

} // namespace quarrynet::samples
