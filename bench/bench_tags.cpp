/// Scanning a script of tags and reading the two attributes of each, against an XML parser on the same tags.
#include "compare.h"
#include "module/moduleScript.h"
#include "platform/Platform.h"
#include "tags/classScript.h"
#include "text/encodings.h"

#include <cstring>
#include <malloc.h>
#include <pugixml.hpp>

namespace
{

using namespace qel;
using namespace qel::bench;
using namespace std::string_view_literals;

constexpr size_t Megabyte = size_t{1} << 20;

class IdleQueue : public MessageQueue
{
    void ProcessPending() override {}
};

/// Scripts of real modules, concatenated: twelve or thirteen tags each, some values with escapes.
Text MakeScript(size_t myLength)
{
    ModuleSettings myMotif;
    myMotif.myImage = u"Árbol de Navidad.gif";
    myMotif.myImageFolder = u"Navidad";
    myMotif.myMIDI = u"Villancico.mid";
    myMotif.myMIDIFolder = u"Música";
    myMotif.myShowImage = myMotif.myPlayMIDI = true;
    myMotif.myFrom = 38353;
    myMotif.myTo = 38383;
    myMotif.myLink = u"URL:http://www.example.org/tienda.asp?seccion=12&orden=\"precio\"";
    ModuleSettings myImport;
    myImport.myImage = u"qelspr.gif";
    myImport.myImageFolder = u"(USER)";
    myImport.myImageMode = ImageMode::Gif;
    myImport.myShowImage = true;
    myImport.myFilename = u"archivo7.dat";
    myImport.myLink = u"UID:4711";

    const Text myPair = WriteScript(myMotif) + WriteScript(myImport);
    Text theResult;
    while (theResult.size() < myLength)
    {
        theResult += myPair;
    }
    return theResult;
}

/// The same tags as elements below one root. Every ">" in a value is escaped, so a line's end is a tag's end.
std::string MakeXml(TextView myScript)
{
    return "<pg>\r\n" + ToUtf8(ReplaceAll(myScript, u">\r\n", u"/>\r\n")) + "</pg>\r\n";
}

/// Calls `mySink` with the two attributes of each tag.
template <class Sink>
void ReadScriptTags(TextView myScript, Sink mySink)
{
    IdleQueue myMessages;
    classScript myScanner(myMessages);
    myScanner.Prefix(u"pg.");
    myScanner.Script(myScript);
    for (myScanner.GetNextTag(); myScanner.TagType() != TokenType::None; myScanner.GetNextTag())
    {
        const bool myIsParam = myScanner.BaseTag() == u"param"sv;
        mySink(myScanner.QueryAttribute(myIsParam ? u"name"sv : u"uid"sv));
        mySink(myScanner.QueryAttribute(myIsParam ? u"value"sv : u"version"sv));
    }
}

template <class Sink>
void ForEachValue(const pugi::xml_document& myDocument, Sink mySink)
{
    for (const pugi::xml_node myTag : myDocument.document_element().children())
    {
        const bool myIsParam = std::strcmp(myTag.name(), "pg.param") == 0;
        mySink(std::string_view(myTag.attribute(myIsParam ? "name" : "uid").value()));
        mySink(std::string_view(myTag.attribute(myIsParam ? "value" : "version").value()));
    }
}

template <class Sink>
void ReadXmlTags(const std::string& myXml, Sink mySink)
{
    pugi::xml_document myDocument;
    myDocument.load_buffer(myXml.data(), myXml.size(), pugi::parse_default, pugi::encoding_utf8);
    ForEachValue(myDocument, mySink);
}

/// Uses every value, its length and its ends, at a negligible cost.
struct Checksum
{
    uint32_t& theSum;

    template <class Value>
    void operator()(const Value& myValue) const
    {
        theSum += static_cast<uint32_t>(myValue.size());
        if (!myValue.empty())
        {
            theSum = 31 * theSum + static_cast<uint32_t>(myValue.front()) + static_cast<uint32_t>(myValue.back());
        }
    }
};

template <class Reader>
uint32_t SumOf(Reader myReader)
{
    uint32_t theResult = 0;
    myReader(Checksum{theResult});
    return theResult;
}

/// The peer on a script as this component receives it, in UTF-16, with the values converted to UTF-16.
template <class Sink>
void ReadWideXmlTags(TextView myXml, Sink mySink)
{
    pugi::xml_document myDocument;
    myDocument.load_buffer(myXml.data(), myXml.size() * sizeof(char16_t), pugi::parse_default, pugi::encoding_utf16);
    ForEachValue(myDocument, [&](std::string_view v) { mySink(FromUtf8(v)); });
}

void RequireSameValues(TextView myScript, const std::string& myXml)
{
    std::vector<std::string> myOurs;
    std::vector<std::string> myPeers;
    std::vector<std::string> myWidePeers;
    ReadScriptTags(myScript, [&](TextView v) { myOurs.push_back(ToUtf8(v)); });
    ReadXmlTags(myXml, [&](std::string_view v) { myPeers.emplace_back(v); });
    ReadWideXmlTags(FromUtf8(myXml), [&](TextView v) { myWidePeers.push_back(ToUtf8(v)); });
    Require(!myOurs.empty() && myOurs == myPeers && myOurs == myWidePeers, "both parsers read the same values");
}

void CompareAll(const Bench& myBench, const std::string& myAllocator)
{
    const Text myScript = MakeScript(4 * Megabyte);
    const std::string myXml = MakeXml(myScript);
    const Text myWideXml = FromUtf8(myXml);
    RequireSameValues(myScript, myXml);
    const auto RunOurs = [&]
    {
        Keep(SumOf([&](Checksum c) { ReadScriptTags(myScript, c); }));
    };
    const auto RunPeer = [&]
    {
        Keep(SumOf([&](Checksum c) { ReadXmlTags(myXml, c); }));
    };
    const auto RunWidePeer = [&]
    {
        Keep(SumOf([&](Checksum c) { ReadWideXmlTags(myWideXml, c); }));
    };
    myBench.Compare("tags: 4 MB against pugixml in its own encoding, " + myAllocator + " allocator", 0, {RunOurs},
                    {RunPeer});
    myBench.Compare("tags: the same, UTF-16 to UTF-16 on both sides", 0.5, {RunOurs}, {RunWidePeer});

    for (const size_t myTimes : {size_t{4}, size_t{16}})
    {
        const Text myLongScript = MakeScript(4 * Megabyte * myTimes);
        const auto RunLong = [&]
        {
            Keep(SumOf([&](Checksum c) { ReadScriptTags(myLongScript, c); }));
        };
        const auto RunRepeatedly = [&]
        {
            for (size_t i = 0; i < myTimes; ++i)
            {
                RunOurs();
            }
        };
        myBench.Compare("tags: " + std::to_string(4 * myTimes) + " MB against " + std::to_string(myTimes) +
                            " times 4 MB, " + myAllocator + " allocator",
                        1.2, {RunLong}, {RunRepeatedly});
    }
}

} // namespace

int main(int argc, char** argv)
{
    const Bench myBench(argc, argv);
    // An allocator keeps its settings and its state until the process ends, so each setting has a process of its own.
    RunInChild([&] { CompareAll(myBench, "stock"); });
    RunInChild(
        [&]
        {
            mallopt(M_TRIM_THRESHOLD, 1 << 30);
            mallopt(M_MMAP_THRESHOLD, 1 << 30);
            CompareAll(myBench, "raised");
        });
}
