/// Splits the inner text of one tag, without its opening mark and ">", into a tag name and attributes.
///
/// No text is an error: malformed input has a defined reading. Attribute names are given in lower case and without
/// blanks at their ends, values as they stand, still escaped. Attributes count from 0. One object serves many tags and
/// reuses its memory. Texts that are written are not copied: each must stay as long as the object is asked for anything
/// of it. An object is used by one thread at a time.
#pragma once

#include "text/text.h"

#include <cstddef>
#include <forward_list>
#include <vector>

namespace qel
{

class classTag
{
public:
    /// The text last written, unchanged.
    TextView Tag() const { return myTag; }

    /// Keeps the text and parses it at once.
    void Tag(TextView theTag);

    /// The tag name, in the case of the text.
    TextView BaseTag() const { return myBaseTag; }

    /// Replaces the tag name alone; text and attributes stay.
    void BaseTag(TextView theBaseTag) { myBaseTag = theBaseTag; }

    /// The number of attributes. Error 6: more than 255, although QueryAttribute sees them all.
    uint8_t AttributeCount() const;

    /// The name or the still escaped value of an attribute. `num` lies below AttributeCount; the entries behind are the
    /// empty text or what an earlier tag left. Error 9: outside the table, which ends one entry behind the last
    /// attribute of the last tag that had any.
    Text AttributeName(int32_t num) const;
    Text AttributeValue(int32_t num) const;

    /// The value of the first attribute of that name, found without regard to case; unescaped unless `noUnquote`. The
    /// empty text when there is none. The view holds until the next tag is written.
    TextView QueryAttribute(TextView theAttribute, bool noUnquote) const;

    /// The text with "&quot;", "&gt;", "&lt;" and then "&amp;" turned back into their characters.
    static Text UnQuote(TextView myText);

private:
    /// Both as they are written, the name without what is dropped at its ends.
    struct Attribute
    {
        TextView Name;
        TextView Value;
    };

    void ParseAttributes(size_t myPosition);
    size_t ParseValue(size_t myPosition, TextView& theValue) const;
    const Attribute& DemandEntry(int32_t num) const;

    TextView myTag;
    TextView myBaseTag;
    size_t myAttributeCount = 0;
    std::vector<Attribute> myTable;             ///< the attributes of the last tag that had any, and one entry more
    mutable std::forward_list<Text> myUnquoted; ///< what views that were given lead to
};

} // namespace qel
