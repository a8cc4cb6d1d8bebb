/// Tags: any text is accepted, and what the builder writes is read back unchanged.
#include "fuzz.h"
#include "tags/classTag.h"
#include "tags/classTagBuilder.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace qel
{
namespace
{

using Attributes = std::vector<std::pair<Text, Text>>;

/// The attributes with their values unescaped, without those that an index cannot reach.
Attributes AttributesOf(const classTag& myTag)
{
    Attributes theAttributes;
    int32_t myCount = UINT8_MAX;
    try
    {
        myCount = myTag.AttributeCount();
    }
    catch (const Error& e)
    {
        Demand(e.Number == ErrorNumber::Overflow, "more attributes than a count can hold are error 6");
    }
    for (int32_t i = 0; i < myCount; ++i)
    {
        theAttributes.emplace_back(myTag.AttributeName(i), classTag::UnQuote(myTag.AttributeValue(i)));
    }
    return theAttributes;
}

void DemandNames(const classTag& myTag, const Attributes& myAttributes)
{
    for (const auto& myAttribute : myAttributes)
    {
        const Text& myName = myAttribute.first;
        Demand(myName == LowerCase(myName) && myName == TrimBlanks(myName),
               "names are in lower case and without blanks");
        const auto myFirst =
            std::find_if(myAttributes.begin(), myAttributes.end(), [&](const auto& a) { return a.first == myName; });
        Demand(myTag.QueryAttribute(myName, false) == myFirst->second, "a query gives the first of that name");
    }
}

/// What a builder can write of a tag: the name and the attributes that have a name and a value.
void DemandSameAgain(const classTag& myTag, Attributes myAttributes)
{
    classTagBuilder myBuilder;
    myBuilder.BaseTag(myTag.BaseTag());
    std::erase_if(myAttributes, [](const auto& a) { return a.first.empty() || a.second.empty(); });
    for (const auto& [myName, myValue] : myAttributes)
    {
        myBuilder.AddAttribute(myName, myValue);
    }
    const Text myWritten = myBuilder.Tag();
    classTag myAgain;
    myAgain.Tag(TextView(myWritten).substr(1, myWritten.size() - 2));
    Demand(myAgain.BaseTag() == myTag.BaseTag(), "the tag name reads back");
    Demand(AttributesOf(myAgain) == myAttributes, "the attributes read back");
}

void DemandAnyValue(TextView myValue)
{
    classTagBuilder myBuilder;
    myBuilder.BaseTag(u"param");
    myBuilder.AddAttribute(u"value", myValue);
    const Text myWritten = myBuilder.Tag();
    Demand(myWritten.find(u'>') == myWritten.size() - 1, "no value ends a tag");
    classTag myTag;
    myTag.Tag(TextView(myWritten).substr(1, myWritten.size() - 2));
    Demand(myTag.QueryAttribute(u"VALUE", false) == myValue, "any value reads back");
}

} // namespace
} // namespace qel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize)
{
    using namespace qel;
    const Text myText = FromUtf8(Characters(myBytes, mySize));
    static classTag myTag; // one object serves many tags, and an earlier one must not affect the next
    myTag.Tag(myText);
    const Attributes myAttributes = AttributesOf(myTag);
    DemandNames(myTag, myAttributes);
    DemandSameAgain(myTag, myAttributes);
    DemandAnyValue(myText);
    return 0;
}
