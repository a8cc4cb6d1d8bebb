// The exported names of a shared library, from its file.
#include "check/system.h"

#include "check/Check.h"
#include "check/expectations.h"

#include <cstring>

#include <elf.h>
#include <link.h>

namespace qel::host
{

namespace
{

/// A record at a place in a file's bytes. Fails the check if the file ends before it does.
template <class Record>
Record RecordAt(const std::string& myBytes, size_t myPlace)
{
    Record theRecord{};
    if (myPlace > myBytes.size() || myBytes.size() - myPlace < sizeof theRecord)
    {
        FailCheck("the file is complete", "it ends before its tables do");
    }
    std::memcpy(&theRecord, myBytes.data() + myPlace, sizeof theRecord);
    return theRecord;
}

} // namespace

std::set<std::string> ExportedNames(const std::filesystem::path& myFile)
{
    const std::string myBytes = ReadFile(myFile);
    const auto myHeader = RecordAt<ElfW(Ehdr)>(myBytes, 0);
    const auto Section = [&](size_t myIndex)
    {
        return RecordAt<ElfW(Shdr)>(myBytes, myHeader.e_shoff + myIndex * sizeof(ElfW(Shdr)));
    };
    std::set<std::string> theNames;
    for (size_t i = 0; i < myHeader.e_shnum; ++i)
    {
        const auto mySymbols = Section(i);
        if (mySymbols.sh_type != SHT_DYNSYM)
        {
            continue;
        }
        const auto myTexts = Section(mySymbols.sh_link);
        for (size_t myOffset = 0; myOffset < mySymbols.sh_size; myOffset += sizeof(ElfW(Sym)))
        {
            const auto mySymbol = RecordAt<ElfW(Sym)>(myBytes, mySymbols.sh_offset + myOffset);
            if (mySymbol.st_shndx != SHN_UNDEF && ELF64_ST_BIND(mySymbol.st_info) != STB_LOCAL)
            {
                RecordAt<char>(myBytes, myTexts.sh_offset + mySymbol.st_name);
                theNames.insert(myBytes.data() + myTexts.sh_offset + mySymbol.st_name);
            }
        }
        return theNames;
    }
    throw Outcome{CheckResult::Skipped, "a file with a table of sections", "it has been stripped of it"};
}

} // namespace qel::host
