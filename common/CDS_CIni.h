#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarrynet {

/// One INI file, read and written through the operating system (see profile_file.h), with a readable description of the
/// last failure. Nothing is cached, so two objects for one file see each other's writes. Texts are bytes in the
/// system's code page; on Windows, file names are UTF-8.
///
/// Every operation returns true on success. On failure it returns false, leaves its output arguments unchanged, and
/// sets LastErrorDescription(). Without a file name, the description is "No filename specified", and no file is
/// touched.
class CDS_CIni
{
public:
    const std::string& FileName() const { return fileName_; }

    /// Sets the full path of the file, which need not exist.
    void setFileName(const std::string& fileName) { fileName_ = fileName; }

    /// Returns an empty text before the first failure, then the system's message for its error code, or "An unknown
    /// error has occured" if there is no code (for a missing section or key, or an empty value).
    const std::string& LastErrorDescription() const { return lastErrorDescription_; }

    /// Returns whether the last failure was one of reading because nothing is there: no file, section or key, or an
    /// empty value. Otherwise the file may have what was asked for, but could not be read.
    bool foundNothing() const;

    /// Reads the value of a key, without the blanks and one pair of quotes around it, up to its first NUL and at most
    /// 254 characters. A missing file, section or key is a failure, as is an empty value.
    bool ReadValue(const std::string& psSection, const std::string& psKey, std::string& psValue);

    /// Writes one value. Creates the file, the section and the key if they are missing. Rejects texts that would change
    /// other lines or be read back as another kind of line, and then writes nothing: a line end or NUL anywhere, "]" in
    /// a section, "=" in a key, a key that begins with "[" or ";", a blank section or key.
    bool WriteValue(const std::string& psSection, const std::string& psKey, const std::string& psValue);

    /// Reads the keys and values of a section, split at the first "=". An entry without "=" is a key with an empty
    /// value. A section of more than 32765 characters is cut after the last complete entry that fits.
    bool ReadSection(const std::string& psSection, std::vector<std::string>& psKeys,
                     std::vector<std::string>& psValues);

    /// Replaces the entries of a section. Arrays of different sizes are a failure. Rejects the same texts as
    /// WriteValue.
    bool WriteSection(const std::string& psSection, const std::vector<std::string>& psKeys,
                      const std::vector<std::string>& psValues);

    /// Reads the names of all sections, in the order of the file; the list is cut like a section. A file without
    /// sections is a failure.
    bool Enum_SectionNames(std::vector<std::string>& psSectionNames);

private:
    bool hasFileName();
    bool fail(std::uint32_t error);

    /// Runs an operation. If it runs out of memory, it fails like other operations.
    template <class Operation>
    bool attempt(Operation operation);

    std::string fileName_;
    std::string lastErrorDescription_;
    std::uint32_t lastErrorCode_ = 0;
};

} // namespace quarrynet
