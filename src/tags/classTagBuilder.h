/// Assembles the text of one tag: a name with a prefix, attributes in their order, and a closing form.
///
/// One builder serves many tags: Clear, add the attributes, read Tag. No text is an error.
/// An object is used by one thread at a time.
#pragma once

#include "text/text.h"

#include <vector>

namespace qel
{

class classTagBuilder
{
public:
    /// Removes the attributes; prefix, tag name and closing form stay.
    void Clear();

    /// Appends an attribute, even if one with this name exists. The name is written unchanged, the value through Quote.
    /// With an empty name or an empty value nothing is added.
    void AddAttribute(TextView newAttribute, TextView newValue);

    /// The tag name; initially empty.
    void BaseTag(TextView theBaseTag) { myBaseTag = theBaseTag; }

    /// The text in front of the tag name, such as "pg."; initially empty.
    void Prefix(TextView thePrefix) { myPrefix = thePrefix; }

    /// True closes the tag with " />" instead of ">"; initially false.
    void SingleTag(bool myValue) { mySingleTag = myValue; }

    /// The text of the tag. Changes nothing, so it can be read any number of times.
    Text Tag() const;

    /// The text with the double quotation mark, ">", "<" and "&" escaped; classTag::UnQuote is its inverse.
    static Text Quote(TextView myText);

private:
    struct TagAttribute
    {
        Text Name;
        Text Value; ///< escaped
    };

    std::vector<TagAttribute> myAttributes;
    Text myBaseTag;
    Text myPrefix;
    bool mySingleTag = false;
};

} // namespace qel
