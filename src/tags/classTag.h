/// Splits the inner text of one tag, without its opening mark and ">", into a tag name and attributes.
///
/// No text is an error: malformed input has a defined reading. Attribute names are given in lower case and without
/// blanks at their ends, values unchanged, still escaped. Attributes count from 0. One object serves many tags and
/// reuses its memory. Texts that are written are not copied: each must remain valid as long as the object reads from
/// it. An object is used by one thread at a time.
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

    /// Replaces only the tag name; text and attributes stay.
    void BaseTag(TextView theBaseTag) { myBaseTag = theBaseTag; }

    /// The number of attributes. Error 6: more than 255, although QueryAttribute sees them all.
    uint8_t AttributeCount() const;

    /// The name or the still escaped value of an attribute. `num` is below AttributeCount; the entries from there on
    /// are empty or left over from an earlier tag. Error 9: outside the table, which ends one entry after the last
    /// attribute of the last tag that had any.
    Text AttributeName(int32_t num) const;
    Text AttributeValue(int32_t num) const;

    /// The value of the first attribute with this name, in any case; unescaped unless `noUnquote`. The empty text when
    /// there is none. The view is valid until the next tag is written.
    TextView QueryAttribute(TextView theAttribute, bool noUnquote) const;

    /// The text with "&quot;", "&gt;", "&lt;" and then "&amp;" unescaped, in this order.
    static Text UnQuote(TextView myText);

private:
    /// Both as they are written; the name without the characters that are dropped at its ends.
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
    mutable std::forward_list<Text> myUnquoted; ///< the texts that returned views refer to
};

} // namespace qel
