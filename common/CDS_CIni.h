#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarrynet {

/// One INI file, read and written through the operating system (see profile_file.h), with a readable description of
/// the last failure. Nothing is cached: two objects on one file see each other's writes. Texts and file names are
/// bytes in the system's code page.
///
/// Every operation returns true on success. On failure it returns false, leaves its output arguments alone, and
/// LastErrorDescription() says why; without a file name that is "No filename specified", and no file is touched.
class CDS_CIni
{
public:
    const std::string& FileName() const { return fileName_; }

    /// The full path of the file, which need not exist.
    void setFileName(const std::string& fileName) { fileName_ = fileName; }

    /// Empty until something failed. Otherwise the system's message for its error code, or "An unknown error has
    /// occured" where the system told none (a missing section or key, or an empty value).
    const std::string& LastErrorDescription() const { return lastErrorDescription_; }

    /// The value of a key, without the blanks and one pair of quotes around it, up to its first NUL and at most 254
    /// characters. A missing file, section or key is a failure, and so is an empty value.
    bool ReadValue(const std::string& psSection, const std::string& psKey, std::string& psValue);

    /// Writes one value; makes the file, the section and the key where they are missing. Texts that would change other
    /// lines or be read back as a line of another kind are refused, and nothing is written: a line end or NUL anywhere,
    /// "]" in a section, "=" in a key, a key that begins with "[" or ";", a blank section or key.
    bool WriteValue(const std::string& psSection, const std::string& psKey, const std::string& psValue);

    /// The keys and values of a section, split at the first "=". An entry without "=" is a key with an empty value. A
    /// section of more than 32765 characters is cut behind the last entry that fits whole.
    bool ReadSection(const std::string& psSection, std::vector<std::string>& psKeys,
                     std::vector<std::string>& psValues);

    /// Replaces the entries of a section; arrays of different size are a failure. Refuses what WriteValue refuses.
    bool WriteSection(const std::string& psSection, const std::vector<std::string>& psKeys,
                      const std::vector<std::string>& psValues);

    /// The names of all sections, in the order of the file; cut like a section. A failure when there is none.
    bool Enum_SectionNames(std::vector<std::string>& psSectionNames);

private:
    bool hasFileName();
    bool fail(std::uint32_t error);

    /// Runs an operation; running out of memory in it is a failure like others.
    template <class Operation>
    bool attempt(Operation operation);

    std::string fileName_;
    std::string lastErrorDescription_;
    std::uint32_t lastErrorCode_ = 0;
};

} // namespace quarrynet
