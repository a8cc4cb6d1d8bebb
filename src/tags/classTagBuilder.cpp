#include "tags/classTagBuilder.h"

namespace qel
{

void classTagBuilder::Clear()
{
    myAttributes.clear();
}

void classTagBuilder::AddAttribute(TextView newAttribute, TextView newValue)
{
    if (!newAttribute.empty() && !newValue.empty())
    {
        myAttributes.push_back({Text(newAttribute), Quote(newValue)});
    }
}

Text classTagBuilder::Tag() const
{
    Text theResult = u"<" + myPrefix + myBaseTag;
    for (const TagAttribute& myAttribute : myAttributes)
    {
        theResult.append(u" ").append(myAttribute.Name).append(u"=\"").append(myAttribute.Value).append(u"\"");
    }
    theResult.append(mySingleTag ? u" />" : u">");
    return theResult;
}

Text classTagBuilder::Quote(TextView myText)
{
    Text theResult;
    theResult.reserve(myText.size());
    for (const char16_t myCharacter : myText)
    {
        switch (myCharacter)
        {
        case u'"':
            theResult += u"&quot;";
            break;
        case u'>':
            theResult += u"&gt;";
            break;
        case u'<':
            theResult += u"&lt;";
            break;
        case u'&':
            theResult += u"&amp;";
            break;
        default:
            theResult += myCharacter;
        }
    }
    return theResult;
}

} // namespace qel
