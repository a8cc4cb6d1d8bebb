/// A fresh folder for a test, a fuzzer or a comparison.
#pragma once

#include "text/text.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel
{

/// A folder of this user alone. It is removed with its content when the object goes. Names are relative to it and in
/// the system's form; only Logical takes the logic's.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(const std::filesystem::path& myParent = std::filesystem::temp_directory_path())
        : myPath((myParent / ("qeltest-" + std::to_string(std::random_device()()))).string())
    {
        if (!std::filesystem::create_directory(myPath))
        {
            throw std::runtime_error("no temporary folder: " + myPath);
        }
        std::filesystem::permissions(myPath, std::filesystem::perms::owner_all);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code myIgnored;
        std::filesystem::remove_all(myPath, myIgnored);
    }

    /// The absolute path of a name, or of the folder itself.
    std::string Native(std::string_view myName = {}) const
    {
        return myName.empty() ? myPath : myPath + "/" + std::string(myName);
    }

    /// The same, to go on from.
    std::filesystem::path operator/(std::string_view myName) const { return Native(myName); }

    /// The same as the logic writes it; the folder itself ends in "\".
    Text Logical(TextView myName = {}) const
    {
        return ReplaceAll(std::filesystem::path(myPath).u16string(), u"/", u"\\") + u"\\" + Text(myName);
    }

    /// Writes a new file, and makes the folders on its path.
    void Write(std::string_view myName, std::string_view myContent) const
    {
        const std::filesystem::path myFile = *this / myName;
        std::filesystem::create_directories(myFile.parent_path());
        std::filesystem::remove(myFile); // to empty an old file would make some file systems wait for the disk
        std::ofstream(myFile, std::ios::binary).write(myContent.data(), static_cast<std::streamsize>(myContent.size()));
    }

    std::string Read(std::string_view myName) const
    {
        std::ifstream myFile(*this / myName, std::ios::binary);
        return {std::istreambuf_iterator<char>(myFile), {}};
    }

    bool Exists(std::string_view myName) const { return std::filesystem::exists(Native(myName)); }

    void MakeFolder(std::string_view myName) const { std::filesystem::create_directories(Native(myName)); }

private:
    std::string myPath;
};

} // namespace qel
