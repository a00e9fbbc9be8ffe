#include "common/CDS_CIni.h"

#include <cstddef>
#include <new>
#include <string_view>
#include <utility>

#include "common/profile_file.h"

namespace quarrynet {

namespace {

// Characters in the buffers that the system fills.
constexpr std::size_t kValueBuffer = 255;
constexpr std::size_t kListBuffer = 32767;
constexpr std::size_t kMessageBuffer = 255;

std::string uptoNul(std::string_view text)
{
    return std::string(text.substr(0, text.find('\0')));
}

/// Returns the complete entries of a packed list. An entry that was cut has its NUL after the list's end.
std::vector<std::string_view> unpack(std::string_view packed)
{
    std::vector<std::string_view> entries;
    std::size_t from = 0;
    for (std::size_t nul = packed.find('\0'); nul != std::string_view::npos; nul = packed.find('\0', from)) {
        entries.push_back(packed.substr(from, nul - from));
        from = nul + 1;
    }
    return entries;
}

} // namespace

bool CDS_CIni::foundNothing() const
{
    return quarrynet::foundNothing(fileName_, lastErrorCode_);
}

bool CDS_CIni::ReadValue(const std::string& psSection, const std::string& psKey, std::string& psValue)
{
    return attempt([&] {
        if (!hasFileName())
            return false;
        const ProfileReply reply = readProfileValue(fileName_, psSection, psKey, kValueBuffer);
        if (reply.text.empty())
            return fail(reply.error);
        psValue = uptoNul(reply.text);
        return true;
    });
}

bool CDS_CIni::WriteValue(const std::string& psSection, const std::string& psKey, const std::string& psValue)
{
    return attempt([&] {
        if (!hasFileName())
            return false;
        const ProfileWrite write = writeProfileValue(fileName_, psSection, psKey, psValue);
        return write.done || fail(write.error);
    });
}

bool CDS_CIni::ReadSection(const std::string& psSection, std::vector<std::string>& psKeys,
                           std::vector<std::string>& psValues)
{
    return attempt([&] {
        if (!hasFileName())
            return false;
        const ProfileReply reply = readProfileSection(fileName_, psSection, kListBuffer);
        if (reply.text.empty())
            return fail(reply.error);
        std::vector<std::string> keys;
        std::vector<std::string> values;
        for (const std::string_view entry : unpack(reply.text)) {
            const std::size_t sign = entry.find('=');
            keys.emplace_back(entry.substr(0, sign));
            values.emplace_back(sign == std::string_view::npos ? std::string_view() : entry.substr(sign + 1));
        }
        // Both arrays have a first slot, even if the only entry was too long for the buffer.
        if (keys.empty()) {
            keys.emplace_back();
            values.emplace_back();
        }
        psKeys.swap(keys);
        psValues.swap(values);
        return true;
    });
}

bool CDS_CIni::WriteSection(const std::string& psSection, const std::vector<std::string>& psKeys,
                            const std::vector<std::string>& psValues)
{
    return attempt([&] {
        if (!hasFileName())
            return false;
        if (psKeys.size() != psValues.size()) {
            lastErrorDescription_ = "Key array and Value array must be of the same size";
            return false;
        }
        std::vector<std::pair<std::string, std::string>> entries;
        entries.reserve(psKeys.size());
        for (std::size_t i = 0; i < psKeys.size(); ++i)
            entries.emplace_back(psKeys[i], psValues[i]);
        const ProfileWrite write = writeProfileSection(fileName_, psSection, entries);
        return write.done || fail(write.error);
    });
}

bool CDS_CIni::Enum_SectionNames(std::vector<std::string>& psSectionNames)
{
    return attempt([&] {
        if (!hasFileName())
            return false;
        const ProfileReply reply = readProfileSectionNames(fileName_, kListBuffer);
        const std::vector<std::string_view> names = unpack(reply.text);
        if (names.empty())
            return fail(reply.error);
        psSectionNames = std::vector<std::string>(names.begin(), names.end());
        return true;
    });
}

template <class Operation>
bool CDS_CIni::attempt(Operation operation)
{
    try {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            return fail(outOfMemoryError());
        }
    } catch (const std::bad_alloc&) {
        lastErrorDescription_ = "Out of memory"; // short enough to need no allocation
        return false;
    }
}

bool CDS_CIni::hasFileName()
{
    if (!fileName_.empty())
        return true;
    lastErrorDescription_ = "No filename specified";
    return false;
}

bool CDS_CIni::fail(std::uint32_t error)
{
    lastErrorCode_ = error;
    lastErrorDescription_ =
        error != 0 ? uptoNul(systemMessage(error, kMessageBuffer)) : std::string("An unknown error has occured");
    return false;
}

} // namespace quarrynet
