/// Shared libraries that the program opens while it runs.
#pragma once

#include <filesystem>
#include <utility>

namespace qel::host
{

/// An open shared library, or none. It is closed at the end of the object's life.
class SharedLibrary
{
public:
    SharedLibrary() = default;
    /// Opens exactly this file. Failure: the system cannot open it; the text names the file and says why.
    explicit SharedLibrary(const std::filesystem::path& myFile);
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    SharedLibrary(SharedLibrary&& myOther) noexcept : myHandle(std::exchange(myOther.myHandle, nullptr)) {}
    SharedLibrary& operator=(SharedLibrary&& myOther) noexcept
    {
        std::swap(myHandle, myOther.myHandle);
        return *this;
    }
    ~SharedLibrary();

    bool IsOpen() const { return myHandle != nullptr; }

    /// Keeps the library open until the end of the process.
    void StayOpen() { myHandle = nullptr; }

    /// The export with this name; null if there is none.
    template <class Function>
    Function Find(const char* myName) const
    {
        return reinterpret_cast<Function>(AddressOf(myName));
    }

private:
    void* AddressOf(const char* myName) const;

    void* myHandle = nullptr; ///< the system's
};

/// The file of the library or program that contains an address; empty if there is none.
std::filesystem::path FileOfAddress(const void* myAddress);

} // namespace qel::host
